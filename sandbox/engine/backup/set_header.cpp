#include "engine/backup/set_header.h"

namespace practice {
namespace {

void encodeFile(ByteText& text, const BackedUpFile& file)
{
    text.integer(file.id);
    text.integer(file.groupId);
    text.text(file.group);
    text.integer(file.pages);
    text.integer(file.maxPages);
    text.text(file.name);
    text.text(file.path);
    text.number(file.readOnly ? 1 : 0);
}

BackedUpFile decodeFile(ByteTextReader& reader)
{
    BackedUpFile file;
    file.id = static_cast<int>(reader.integer());
    file.groupId = static_cast<int>(reader.integer());
    file.group = reader.text();
    file.pages = reader.integer();
    file.maxPages = reader.integer();
    file.name = reader.text();
    file.path = reader.text();
    file.readOnly = reader.number() != 0;
    return file;
}

} // namespace

std::string encodeHeader(const SetHeader& header)
{
    ByteText text;
    text.number(static_cast<std::uint64_t>(header.kind));
    text.number(header.copyOnly ? 1 : 0);
    for (const Digest* id : {&header.id, &header.fork, &header.baseId})
        text.id(*id);
    for (const std::uint64_t lsn : {header.firstLsn, header.lastLsn, header.fullLsn})
        text.number(lsn);
    for (const std::string* part : {&header.name, &header.description, &header.user, &header.server,
                                    &header.database, &header.collation})
        text.text(*part);
    for (const std::int64_t number :
         {header.created, header.started, header.stamp, std::int64_t{header.level},
          std::int64_t{header.recovery}, std::int64_t{header.access}, std::int64_t{header.readOnly}})
        text.integer(number);
    text.number(header.files.size());
    for (const BackedUpFile& file : header.files)
        encodeFile(text, file);
    return std::move(text.bytes);
}

SetHeader decodeHeader(std::string_view bytes)
{
    ByteTextReader reader(bytes);
    SetHeader header;
    const std::uint64_t kind = reader.number();
    if (kind != 1 && kind != 2 && kind != 5)
        throw DamagedBackup{};
    header.kind = static_cast<SetKind>(kind);
    header.copyOnly = reader.number() != 0;
    for (Digest* id : {&header.id, &header.fork, &header.baseId})
        *id = reader.id();
    for (std::uint64_t* lsn : {&header.firstLsn, &header.lastLsn, &header.fullLsn})
        *lsn = reader.number();
    for (std::string* part : {&header.name, &header.description, &header.user, &header.server,
                              &header.database, &header.collation})
        *part = reader.text();
    for (std::int64_t* number : {&header.created, &header.started, &header.stamp})
        *number = reader.integer();
    for (int* number : {&header.level, &header.recovery, &header.access})
        *number = static_cast<int>(reader.integer());
    header.readOnly = reader.integer() != 0;
    for (std::uint64_t count = reader.number(); count > 0; --count)
        header.files.push_back(decodeFile(reader));
    return header;
}

std::string encodeTrailer(const SetTrailer& trailer)
{
    ByteText text;
    text.integer(trailer.finished);
    text.number(trailer.bytes);
    text.number(trailer.rows);
    return std::move(text.bytes);
}

SetTrailer decodeTrailer(std::string_view bytes)
{
    ByteTextReader reader(bytes);
    SetTrailer trailer;
    trailer.finished = reader.integer();
    trailer.bytes = reader.number();
    trailer.rows = reader.number();
    return trailer;
}

} // namespace practice
