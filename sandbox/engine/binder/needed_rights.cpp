// The rights that a statement turns out to need while it is bound.
#include "engine/binder/translator.h"

#include "engine/context/temporary_names.h"

namespace practice {

void Translator::need(const ObjectPtr& object, Right right, std::set<int> columns)
{
    if (!lends(context_.session, context_.module, *object))
        needs_.push_back({{object, right, std::move(columns)}});
}

int Translator::needToRead(const ObjectPtr& object, bool anyColumn)
{
    if ((object->databaseId == tempdbId && isTemporary(object->name)) ||
        lends(context_.session, context_.module, *object))
        return noNeed;
    needs_.push_back({{object, Right::Select}, anyColumn});
    return static_cast<int>(needs_.size()) - 1;
}

void Translator::watch(Source& source, const ObjectPtr& object)
{
    source.need = needToRead(object, false);
}

void Translator::needOnlyWhatIsRead(const Source& source)
{
    if (source.need != noNeed)
        needs_[static_cast<std::size_t>(source.need)].anyColumn = false;
}

void Translator::noteRead(const Source& source, const SourceColumn& column)
{
    if (source.need == noNeed)
        return;
    RightNeed& right = needs_[static_cast<std::size_t>(source.need)].right;
    // A view may give a column that it had not when it was made; it is nobody's own then.
    if (const Column* known = right.object->column(column.name); known != nullptr)
        right.columns.insert(known->id);
}

void Translator::requireRights()
{
    std::vector<RightNeed> all;
    for (const Need& need : needs_) {
        if (need.anyColumn || !need.right.columns.empty() || need.right.right != Right::Select)
            all.push_back(need.right);
    }
    practice::requireRights(context_.session, all);
}

} // namespace practice
