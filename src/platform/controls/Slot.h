// The one global instance of a form: made on first use, let go when the form goes.
#pragma once

#include <QPointer>

namespace controls {

/// `*slot` names the instance, making it when there is none, and leaves it unloaded; `slot->` also loads it.
template <class F>
class Slot
{
public:
    Slot() = default;
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    F& operator*()
    {
        if (!m_instance) {
            m_instance = new F; // owned by its life as a window: deleted after its unload
            QObject::connect(m_instance, &F::unloaded, m_instance, [this] { m_instance.clear(); });
        }
        return *m_instance;
    }
    F* operator->()
    {
        F& instance = **this;
        instance.Load();
        return &instance;
    }
    [[nodiscard]] bool exists() const { return !m_instance.isNull(); }

private:
    QPointer<F> m_instance;
};

} // namespace controls
