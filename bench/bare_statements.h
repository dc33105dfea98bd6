// What a form sends, against the same statements sent bare.
#pragma once

#include "console_bench.h"

#include "sandbox/raw_client.h"
#include "support/PracticeServer.h"

namespace bench {

/// Times of `run` through the console, and of the statements that arrived from it sent again by a client that
/// looks at no answer.
template <class Run>
Pair compareWithBareStatements(const support::PracticeServer& server, Run run)
{
    practice::test::RawClient client(static_cast<std::uint16_t>(server.port()));
    static_cast<void>(
        client.ask(practice::test::loginPacket({support::PracticeServer::password, 16'384, "master"})));
    qint64 place = 0;
    QStringList sent;
    static_cast<void>(server.statementsFrom(place));
    run();
    const Pair pair = compare(run, [&] {
        if (const QStringList statements = server.statementsFrom(place); !statements.isEmpty())
            sent = statements;
        for (const QString& statement : sent) {
            client.send(practice::test::batchPacket(statement.toStdString()));
            static_cast<void>(client.drain());
        }
        static_cast<void>(server.statementsFrom(place));
    });
    std::printf("%d statements\n", static_cast<int>(sent.size()));
    return pair;
}

} // namespace bench
