// The state of the store that a statement outside any transaction reads from its begin to its end.
#pragma once

#include "engine/store/store.h"

namespace practice {

class ReadView
{
public:
    ReadView() = default;
    explicit ReadView(Store& store)
        : store_(&store), row_(store.connection(), "SELECT version FROM cat_version", true)
    {}

    void begin()
    {
        if (store_->inTransaction())
            return;
        row_.reset();
        row_.step();
    }
    void end() { row_.reset(); }

private:
    Store* store_ = nullptr;
    Statement row_; ///< while it stands on its row, the store's read transaction stays open
};

} // namespace practice
