#include "engine/backup/restore_listing.h"

#include "engine/store/storage.h"
#include "types/product_version.h"

#include <algorithm>

namespace practice {
namespace {

/// One column with its value in the row at hand.
struct Cell
{
    const char* name;
    SqlType type;
    Value value;
    bool nullable = true;
};

constexpr std::int64_t bytesOfFilePage = 8192;
constexpr int softwareVendor = 4608; ///< Microsoft's, as clients look for it

Value textValue(const std::string& text)
{
    return {text.empty() ? decltype(Value::data)() : decltype(Value::data)(text)};
}

Cell textCell(const char* name, int length, const std::string& text)
{
    return {name, {TypeId::NVarChar, length}, textValue(text)};
}

Cell numberCell(const char* name, TypeId type, std::int64_t number)
{
    return {name, defaultType(type, true), {number}};
}

Cell nothing(const char* name, const SqlType& type)
{
    return {name, type, {}};
}

SqlType numericType(std::uint8_t precision)
{
    SqlType type = defaultType(TypeId::Numeric, true);
    type.precision = precision;
    type.length = decimalStorage(precision);
    return type;
}

Cell numericCell(const char* name, std::uint8_t precision, std::uint64_t number)
{
    return {name, numericType(precision), {Decimal{number, 0, false}}};
}

Cell lsnCell(const char* name, std::uint64_t lsn)
{
    return numericCell(name, 25, lsn);
}

Cell momentCell(const char* name, std::int64_t stored)
{
    return {name, defaultType(TypeId::DateTime, true), {fromDatetimeStorage(stored)}};
}

Cell idCell(const char* name, const Digest& id)
{
    return {name, defaultType(TypeId::UniqueIdentifier, true), {Guid(id)}};
}

Cell bitCell(const char* name, bool on)
{
    return numberCell(name, TypeId::Bit, on ? 1 : 0);
}

const char* kindText(SetKind kind)
{
    return kind == SetKind::Full  ? "Database"
           : kind == SetKind::Log ? "Transaction Log"
                                  : "Database Differential";
}

const char* recoveryText(int recovery)
{
    switch (static_cast<RecoveryModel>(recovery)) {
    case RecoveryModel::Simple:
        return "SIMPLE";
    case RecoveryModel::BulkLogged:
        return "BULK-LOGGED";
    case RecoveryModel::Full:
        break;
    }
    return "FULL";
}

void addAbout(std::vector<Cell>& row, const SetHeader& header, int position)
{
    constexpr int diskDevice = 2;
    constexpr int internalVersion = 661;
    row.push_back(textCell("BackupName", 128, header.name));
    row.push_back(textCell("BackupDescription", 255, header.description));
    row.push_back(numberCell("BackupType", TypeId::SmallInt, static_cast<int>(header.kind)));
    row.push_back(nothing("ExpirationDate", defaultType(TypeId::DateTime, true)));
    row.push_back(numberCell("Compressed", TypeId::TinyInt, 0));
    row.push_back(numberCell("Position", TypeId::SmallInt, position));
    row.push_back(numberCell("DeviceType", TypeId::TinyInt, diskDevice));
    row.push_back(textCell("UserName", 128, header.user));
    row.push_back(textCell("ServerName", 128, header.server));
    row.push_back(textCell("DatabaseName", 128, header.database));
    row.push_back(numberCell("DatabaseVersion", TypeId::Int, internalVersion));
    row.push_back(momentCell("DatabaseCreationDate", header.created));
}

void addExtent(std::vector<Cell>& row, const FoundSet& set)
{
    row.push_back(numericCell("BackupSize", 20, set.trailer.bytes));
    row.push_back(lsnCell("FirstLSN", set.header.firstLsn));
    row.push_back(lsnCell("LastLSN", set.header.lastLsn));
    row.push_back(lsnCell("CheckpointLSN", set.header.lastLsn));
    row.push_back(lsnCell("DatabaseBackupLSN", set.header.fullLsn));
    row.push_back(momentCell("BackupStartDate", set.header.started));
    row.push_back(momentCell("BackupFinishDate", set.trailer.finished));
}

void addServer(std::vector<Cell>& row, const SetHeader& header)
{
    constexpr int sortOrder = 52;
    constexpr int localeId = 1033;
    constexpr int comparison = 196609;
    constexpr int checksummed = 16;
    row.push_back(numberCell("SortOrder", TypeId::SmallInt, sortOrder));
    row.push_back(numberCell("CodePage", TypeId::SmallInt, 0));
    row.push_back(numberCell("UnicodeLocaleId", TypeId::Int, localeId));
    row.push_back(numberCell("UnicodeComparisonStyle", TypeId::Int, comparison));
    row.push_back(numberCell("CompatibilityLevel", TypeId::TinyInt, header.level));
    row.push_back(numberCell("SoftwareVendorId", TypeId::Int, softwareVendor));
    row.push_back(numberCell("SoftwareVersionMajor", TypeId::Int, productVersion.major));
    row.push_back(numberCell("SoftwareVersionMinor", TypeId::Int, productVersion.minor));
    row.push_back(numberCell("SoftwareVersionBuild", TypeId::Int, productVersion.build));
    row.push_back(textCell("MachineName", 128, header.server));
    row.push_back(numberCell("Flags", TypeId::Int, checksummed));
}

void addState(std::vector<Cell>& row, const SetHeader& header)
{
    row.push_back(idCell("BindingID", header.fork));
    row.push_back(idCell("RecoveryForkID", header.fork));
    row.push_back(textCell("Collation", 128, header.collation));
    row.push_back(idCell("FamilyGUID", header.fork));
    row.push_back(bitCell("HasBulkLoggedData", false));
    row.push_back(bitCell("IsSnapshot", false));
    row.push_back(bitCell("IsReadOnly", header.readOnly));
    row.push_back(bitCell("IsSingleUser", header.access == static_cast<int>(UserAccess::Single)));
    row.push_back(bitCell("HasBackupChecksums", true));
    row.push_back(bitCell("IsDamaged", false));
    row.push_back(
        bitCell("BeginsLogChain", header.kind == SetKind::Log && header.firstLsn == header.fullLsn));
    row.push_back(bitCell("HasIncompleteMetaData", false));
    row.push_back(bitCell("IsForceOffline", false));
    row.push_back(bitCell("IsCopyOnly", header.copyOnly));
}

void addChain(std::vector<Cell>& row, const FoundSet& set)
{
    const SetHeader& header = set.header;
    const bool differential = header.kind == SetKind::Differential;
    row.push_back(idCell("FirstRecoveryForkID", header.fork));
    row.push_back(nothing("ForkPointLSN", numericType(25)));
    row.push_back(textCell("RecoveryModel", 60, recoveryText(header.recovery)));
    row.push_back(differential ? lsnCell("DifferentialBaseLSN", header.fullLsn)
                               : nothing("DifferentialBaseLSN", numericType(25)));
    row.push_back(differential
                      ? idCell("DifferentialBaseGUID", header.baseId)
                      : nothing("DifferentialBaseGUID", defaultType(TypeId::UniqueIdentifier, true)));
    row.push_back(textCell("BackupTypeDescription", 60, kindText(header.kind)));
    row.push_back(idCell("BackupSetGUID", header.id));
    row.push_back(
        numberCell("CompressedBackupSize", TypeId::BigInt, static_cast<std::int64_t>(set.trailer.bytes)));
}

std::vector<Cell> fileRow(const FoundSet& set, const BackedUpFile& file)
{
    const SqlType lsn = numericType(25);
    const SqlType id = defaultType(TypeId::UniqueIdentifier, true);
    const bool log = file.groupId == 0;
    const bool differential = set.header.kind == SetKind::Differential;
    const std::int64_t most = file.maxPages < 0 ? std::int64_t{1} << 45U : file.maxPages * bytesOfFilePage;
    std::string seed = file.name;
    seed.append(set.header.fork.begin(), set.header.fork.end());
    return {textCell("LogicalName", 128, file.name),
            textCell("PhysicalName", 260, file.path),
            {"Type", {TypeId::Char, 1}, {std::string(log ? "L" : "D")}},
            textCell("FileGroupName", 128, file.group),
            numericCell("Size", 20, static_cast<std::uint64_t>(file.pages * bytesOfFilePage)),
            numericCell("MaxSize", 20, static_cast<std::uint64_t>(most)),
            numberCell("FileId", TypeId::BigInt, file.id),
            lsnCell("CreateLSN", 0),
            nothing("DropLSN", lsn),
            idCell("UniqueId", digestOf(seed)),
            nothing("ReadOnlyLSN", lsn),
            nothing("ReadWriteLSN", lsn),
            numberCell("BackupSizeInBytes", TypeId::BigInt,
                       file.id == 1 ? static_cast<std::int64_t>(set.trailer.bytes) : 0),
            numberCell("SourceBlockSize", TypeId::Int, 512),
            numberCell("FileGroupId", TypeId::Int, file.groupId),
            nothing("LogGroupGUID", id),
            differential && !log ? lsnCell("DifferentialBaseLSN", set.header.fullLsn)
                                 : nothing("DifferentialBaseLSN", lsn),
            differential && !log ? idCell("DifferentialBaseGUID", set.header.baseId)
                                 : nothing("DifferentialBaseGUID", id),
            bitCell("IsReadOnly", file.readOnly),
            bitCell("IsPresent", true),
            nothing("TDEThumbprint", {TypeId::VarBinary, 32})};
}

void sendCells(SessionContext& session, const std::vector<std::vector<Cell>>& rows)
{
    std::vector<ColumnInfo> columns;
    for (const Cell& cell : rows.front())
        columns.push_back({cell.name, cell.type, cell.nullable, false, false});
    session.sink().columns(columns);
    for (const auto& row : rows) {
        std::vector<Value> values;
        std::transform(row.begin(), row.end(), std::back_inserter(values),
                       [](const Cell& cell) { return cell.value; });
        session.sink().row(values);
    }
    Completion completion;
    completion.command = commands::select;
    if (!session.options().noCount)
        completion.rows = rows.size();
    session.sink().done(completion);
}

} // namespace

void sendHeaders(SessionContext& session, const std::vector<FoundSet>& sets)
{
    std::vector<std::vector<Cell>> rows;
    for (const FoundSet& set : sets) {
        std::vector<Cell>& row = rows.emplace_back();
        addAbout(row, set.header, static_cast<int>(rows.size()));
        addExtent(row, set);
        addServer(row, set.header);
        addState(row, set.header);
        addChain(row, set);
    }
    sendCells(session, rows);
}

void sendFileList(SessionContext& session, const FoundSet& set)
{
    std::vector<std::vector<Cell>> rows;
    for (const BackedUpFile& file : set.header.files)
        rows.push_back(fileRow(set, file));
    sendCells(session, rows);
}

void sendLabel(SessionContext& session, const MediaPage& media)
{
    sendCells(
        session,
        {{textCell("MediaName", 128, ""), idCell("MediaSetId", media.id),
          numberCell("FamilyCount", TypeId::Int, 1), numberCell("FamilySequenceNumber", TypeId::Int, 1),
          idCell("MediaFamilyId", media.id), numberCell("MediaSequenceNumber", TypeId::Int, 1),
          numberCell("MediaLabelPresent", TypeId::TinyInt, 0), textCell("MediaDescription", 255, ""),
          textCell("SoftwareName", 128, "Microsoft SQL Server"),
          numberCell("SoftwareVendorId", TypeId::Int, softwareVendor), momentCell("MediaDate", media.created),
          numberCell("MirrorCount", TypeId::Int, 1), bitCell("IsCompressed", false)}});
}

} // namespace practice
