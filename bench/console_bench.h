// What the console's benchmarks share: times in pairs, and the console connected to a server.
#pragma once

#include "app/Main.h"
#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/LeeIdioma.h"
#include "core/frmConectar.h"
#include "core/mdiPrincipal.h"
#include "core/mdlRegistro.h"
#include "platform/ado/Connection.h"
#include "platform/ado/Recordset.h"
#include "platform/controls/Theme.h"
#include "query/frmAnalizadorConsultas.h"

#include <QApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <stdexcept>
#include <vector>

namespace bench {

using namespace Qt::StringLiterals;

inline constexpr int repetitions = 5;
inline constexpr int manyRepetitions = 25; ///< of what takes milliseconds

template <class Work>
double seconds(Work work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Of this thread alone: what the server, which runs in this process, does beside it does not count.
template <class Work>
double processorSeconds(Work work)
{
    const auto now = [] {
        timespec time = {};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double begin = now();
    work();
    return now() - begin;
}

struct Pair
{
    double ours;
    double plain;
};

/// Medians of both, measured in turns.
template <class Ours, class Plain>
Pair compare(Ours ours, Plain plain, int times = repetitions, bool processorOnly = false)
{
    const auto measure = [=](const auto& work) {
        return processorOnly ? processorSeconds(work) : seconds(work);
    };
    std::vector<double> left;
    std::vector<double> right;
    for (int time = 0; time < times; ++time) {
        right.push_back(measure(plain));
        left.push_back(measure(ours));
    }
    std::ranges::sort(left);
    std::ranges::sort(right);
    return {left[left.size() / 2], right[right.size() / 2]};
}

/// `ratio` is that which the target is about.
inline void report(const char* what, double ratio, const char* target, Pair pair)
{
    std::printf("%-52s %6.2f  (target %s; %.4f s against %.4f s)\n", what, ratio, target, pair.ours,
                pair.plain);
    std::fflush(stdout);
}

inline ado::Recordset opened(ado::Connection& connection, const QString& text)
{
    ado::Recordset recordset;
    recordset.Open(text, connection, -1, -1, 1);
    return recordset;
}

/// Sees whether a widget is painted.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(QWidget* widget) { widget->installEventFilter(this); }
    [[nodiscard]] bool isPainted() const { return m_isPainted; }
    bool eventFilter(QObject*, QEvent* event) override
    {
        m_isPainted = m_isPainted || event->type() == QEvent::Paint;
        return false;
    }

private:
    bool m_isPainted = false;
};

/// Until the event loop has painted what was changed.
inline void painted(QWidget* widget)
{
    const PaintWatch watch(widget);
    for (int round = 0; !watch.isPainted(); ++round) {
        if (round == 100)
            throw std::runtime_error("nothing is painted");
        QApplication::processEvents();
    }
}

inline void showMainWindow()
{
    CrearClave(HKEY_CURRENT_USER, ClaveRegistro);
    EscribirValor(HKEY_CURRENT_USER, ClaveRegistro, ValorIdioma, basic::Variant(1), ValorNumero);
    controls::applyTheme();
    Main();
    painted(&*::mdiPrincipal);
}

/// Through the connect form, as sa; then opens the browser and a query window.
inline void connectConsole(int port, const QString& password)
{
    ::mdiPrincipal->mnuConectar->trigger();
    ::frmConectar->txtServidor->setText(u"127.0.0.1,"_s + QString::number(port));
    ::frmConectar->txtClave->setText(password);
    ::frmConectar->cmdConectar->click();
    ::mdiPrincipal->mnuAdministrador->trigger();
    ::mdiPrincipal->mnuAnalizadorConsultas->trigger();
    QApplication::processEvents();
}

/// Parts that the command line names; all when it names none.
inline bool isWanted(const QString& part)
{
    const QStringList parts = QCoreApplication::arguments().sliced(1);
    return parts.isEmpty() || parts.contains(part);
}

/// Filling the browser, and showing it, against reading what it is filled with.
inline void browser(ado::Connection& connection)
{
    ::frmAdministrador->SetFocus();
    const Pair tree = compare(
        [] {
            ::frmAdministrador->CapturaBD_SQL();
            painted(::frmAdministrador->trvBD->viewport());
        },
        [&] { opened(connection, u"Select name from master.dbo.sysdatabases order by name"_s); },
        manyRepetitions);
    report("tree of 5,000 databases against its query", tree.ours / tree.plain, "<= 2", tree);

    ::PrefijoBD = u"Database0.."_s;
    const Pair list = compare(
        [] {
            ::frmAdministrador->MuestraTablas(u"Database0"_s);
            painted(::frmAdministrador->ltvTablas->viewport());
        },
        [&] {
            opened(connection,
                   u"Select t.name as tabla,t.xtype as tipo,u.name as usuario,t.crdate as fecha  from "
                   "Database0..sysobjects t,Database0..sysusers u where (t.xtype = 'U'or t.xtype = 'S') "
                   "and u.uid = t.uid order by t.name"_s);
        },
        manyRepetitions);
    report("list of 20,000 tables against its query", list.ours / list.plain, "<= 2", list);
}

} // namespace bench
