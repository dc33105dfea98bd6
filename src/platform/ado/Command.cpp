#include "platform/ado/Command.h"

#include "platform/basic/RuntimeError.h"

namespace ado {

Recordset Command::Execute() const
{
    if (m_connection == nullptr)
        basic::raise(basic::error::BadConnection);
    Recordset recordset;
    recordset.Open(m_text, *m_connection);
    return recordset;
}

} // namespace ado
