// Families of column types; what the forms and the grid need to know of them.
#pragma once

namespace ado {

enum class FieldKind
{
    Boolean,
    Integer,
    Float,
    Decimal,
    Text,
    Date,
    Binary
};

} // namespace ado
