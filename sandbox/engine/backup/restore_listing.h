// The result sets of RESTORE HEADERONLY, FILELISTONLY and LABELONLY, with the columns of SQL Server 2008 R2.
#pragma once

#include "engine/backup/set_reader.h"
#include "engine/context/session_context.h"

namespace practice {

void sendHeaders(SessionContext& session, const std::vector<FoundSet>& sets);
void sendFileList(SessionContext& session, const FoundSet& set);
void sendLabel(SessionContext& session, const MediaPage& media);

} // namespace practice
