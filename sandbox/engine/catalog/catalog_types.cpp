#include "engine/catalog/catalog_types.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <utility>

namespace practice {
namespace {

constexpr std::array<std::pair<ObjectKind, const char*>, 15> kinds{{
    {ObjectKind::UserTable, "U"},
    {ObjectKind::SystemTable, "S"},
    {ObjectKind::View, "V"},
    {ObjectKind::Procedure, "P"},
    {ObjectKind::ScalarFunction, "FN"},
    {ObjectKind::InlineFunction, "IF"},
    {ObjectKind::TableFunction, "TF"},
    {ObjectKind::Trigger, "TR"},
    {ObjectKind::PrimaryKey, "PK"},
    {ObjectKind::UniqueConstraint, "UQ"},
    {ObjectKind::ForeignKey, "F"},
    {ObjectKind::Check, "C"},
    {ObjectKind::Default, "D"},
    {ObjectKind::Rule, "R"},
    {ObjectKind::ExtendedProcedure, "X"},
}};

template <typename List, typename Test>
auto* findIn(List& list, Test test)
{
    const auto found = std::find_if(list.begin(), list.end(), test);
    return found == list.end() ? nullptr : &*found;
}

} // namespace

const char* xtypeOf(ObjectKind kind)
{
    return findIn(kinds, [&](const auto& entry) { return entry.first == kind; })->second;
}

std::optional<ObjectKind> kindOfXtype(const std::string& xtype)
{
    const std::string bare = xtype.substr(0, xtype.find_last_not_of(' ') + 1);
    const auto* found = findIn(kinds, [&](const auto& entry) { return bare == entry.second; });
    return found == nullptr ? std::nullopt : std::optional(found->first);
}

const Column* Object::column(const std::string& wanted) const
{
    return findIn(columns, [&](const Column& column) { return sameName(column.name, wanted); });
}

const Column* Object::column(int wanted) const
{
    return findIn(columns, [&](const Column& column) { return column.id == wanted; });
}

const Index* Object::index(const std::string& wanted) const
{
    return findIn(indexes, [&](const Index& index) { return sameName(index.name, wanted); });
}

const Index* Object::index(int wanted) const
{
    return findIn(indexes, [&](const Index& index) { return index.id == wanted; });
}

const Index* Object::primaryKey() const
{
    return findIn(indexes, [](const Index& index) { return index.primaryKey; });
}

const Column* Object::identityColumn() const
{
    return findIn(columns, [](const Column& column) { return column.identity.has_value(); });
}

std::string storageTable(int databaseId, int objectId)
{
    return "u" + std::to_string(databaseId) + '_' + std::to_string(objectId);
}

std::string storageColumn(int columnId)
{
    return "c" + std::to_string(columnId);
}

std::string storageIndex(int databaseId, int objectId, int indexId)
{
    return "i" + std::to_string(databaseId) + '_' + std::to_string(objectId) + '_' + std::to_string(indexId);
}

bool sameName(const std::string& left, const std::string& right)
{
    return left == right || foldName(left) == foldName(right);
}

std::string foldName(const std::string& name)
{
    std::string folded = name;
    bool ascii = true;
    for (char& letter : folded) {
        if (letter >= 'A' && letter <= 'Z')
            letter = char(letter + ('a' - 'A'));
        ascii = ascii && static_cast<unsigned char>(letter) < 0x80;
    }
    if (ascii)
        return folded;
    std::string out;
    icu::UnicodeString::fromUTF8(name).foldCase().toUTF8String(out);
    return out;
}

} // namespace practice
