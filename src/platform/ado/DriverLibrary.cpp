#include "platform/ado/DriverLibrary.h"

#include <array>
#include <dlfcn.h>
#include <link.h>
#include <string>

namespace ado {

namespace {

/// Path of the loaded library with this file name; empty when there is none.
std::string loadedLibrary(const QString& fileName)
{
    struct Search
    {
        std::string ending;
        std::string path;
    } search{"/" + fileName.section(u'/', -1).toStdString(), {}};
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* data) {
            auto* const wanted = static_cast<Search*>(data);
            const std::string path = info->dlpi_name;
            if (!path.ends_with(wanted->ending))
                return 0;
            wanted->path = path;
            return 1;
        },
        &search);
    return search.path;
}

} // namespace

DriverLibrary::DriverLibrary(SQLHDBC connection) : m_connection(connection)
{
    std::array<SQLCHAR, 1024> name{};
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(SQLGetInfo(connection, SQL_DRIVER_NAME, name.data(), name.size(), &length)))
        return;
    const std::string path = loadedLibrary(QString::fromUtf8(reinterpret_cast<const char*>(name.data())));
    void* const library = path.empty() ? nullptr : dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (library == nullptr)
        return;
    m_moreResults = reinterpret_cast<MoreResults>(dlsym(library, "SQLMoreResults"));
    m_getDiagRec = reinterpret_cast<GetDiagRec>(dlsym(library, "SQLGetDiagRecW"));
}

SQLHSTMT DriverLibrary::own(SQLHSTMT statement) const
{
    SQLHSTMT found = statement;
    const SQLRETURN outcome =
        SQLGetInfoW(m_connection, SQL_DRIVER_HSTMT, static_cast<SQLPOINTER>(&found), sizeof found, nullptr);
    return SQL_SUCCEEDED(outcome) ? found : nullptr;
}

SQLRETURN DriverLibrary::moreResults(SQLHSTMT statement) const
{
    SQLHSTMT const driverStatement = m_moreResults == nullptr ? nullptr : own(statement);
    return driverStatement == nullptr ? SQLRETURN{SQL_NO_DATA} : m_moreResults(driverStatement);
}

SQLRETURN DriverLibrary::diagnostic(SQLHSTMT own, SQLSMALLINT index, QString& state, SQLINTEGER& native,
                                    QString& text, SQLSMALLINT& length) const
{
    if (m_getDiagRec == nullptr || own == nullptr)
        return SQL_NO_DATA;
    return m_getDiagRec(SQL_HANDLE_STMT, own, index, odbc::wide(state), &native, odbc::wide(text),
                        static_cast<SQLSMALLINT>(text.size()), &length);
}

} // namespace ado
