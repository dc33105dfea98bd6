#include "platform/basic/Files.h"
#include "platform/basic/RuntimeError.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <functional>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace basic {
namespace {

constexpr uid_t nobody = 65534;

int save(const QString& name, const QByteArray& bytes)
{
    try {
        OutputFile(name).replace(bytes);
    } catch (const RuntimeError& error) {
        return error.number();
    }
    return 0;
}

int openToRead(const QString& name)
{
    try {
        const InputFile file(name);
    } catch (const RuntimeError& error) {
        return error.number();
    }
    return 0;
}

QByteArray contents(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

void write(const QString& name, const QByteArray& bytes)
{
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

/// What `action` gives in a process of its own, where limits and other users do no harm.
int inChild(const std::function<int()>& action)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(action());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// The same without the administrator's rights, who may write everywhere.
int asOrdinaryUser(const std::function<int()>& action)
{
    return inChild([&] {
        if (geteuid() == 0 && (setegid(nobody) != 0 || seteuid(nobody) != 0))
            return 255;
        return action();
    });
}

int withFilesOfAtMost(rlim_t bytes, const std::function<int()>& action)
{
    return inChild([&] {
        const rlimit limit{bytes, bytes};
        setrlimit(RLIMIT_FSIZE, &limit);
        return action();
    });
}

struct stat statusOf(const QString& name)
{
    struct stat status
    {};
    EXPECT_EQ(stat(QFile::encodeName(name).constData(), &status), 0);
    return status;
}

class Files : public ::testing::Test
{
protected:
    [[nodiscard]] QString path(const QString& name) const { return folder.filePath(name); }
    [[nodiscard]] QStringList names() const
    {
        return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }

    QTemporaryDir folder;
    const QByteArray shortText = QByteArray("old text\r\n").repeated(100);
    const QByteArray longText = QByteArray("a new text\r\n").repeated(300);
};

TEST_F(Files, WantOfRoomIsErrorAndTheOldTextStands)
{
    EXPECT_EQ(save("/dev/full", "x"), error::DiskFull);
    const QString name = path("script.sql");
    write(name, shortText);
    for (const int most : {0, 10, 1500, 3000})
        EXPECT_EQ(withFilesOfAtMost(static_cast<rlim_t>(most), [&] { return save(name, longText); }),
                  error::DiskFull)
            << most;
    EXPECT_EQ(contents(name), shortText);
    EXPECT_EQ(withFilesOfAtMost(10, [&] { return save(path("none.sql"), longText); }), error::DiskFull);
    EXPECT_EQ(names(), QStringList{"script.sql"}) << "nothing is left beside it, nor half a new file";
    EXPECT_EQ(save(name, longText), 0);
    EXPECT_EQ(contents(name), longText);
}

TEST_F(Files, AWriteInPlaceThatFailsMidwayIsUndone)
{
    const QString name = path("script.sql");
    const auto overwriteWithin = [&](rlim_t most, const QByteArray& text, bool readable) {
        return withFilesOfAtMost(most, [&] {
            bool oldIsWhole = true;
            const QByteArray file = QFile::encodeName(name);
            try {
                overwrite(Descriptor(open(file.constData(), O_WRONLY)),
                          readable ? Descriptor(open(file.constData(), O_RDONLY)) : Descriptor(), text,
                          oldIsWhole);
            } catch (const RuntimeError& error) {
                return error.number() + (oldIsWhole ? 100 : 0);
            }
            return 0;
        });
    };
    write(name, shortText);
    EXPECT_EQ(overwriteWithin(2000, longText, true), error::DiskFull + 100) << "grows";
    EXPECT_EQ(contents(name), shortText);
    write(name, longText);
    EXPECT_EQ(overwriteWithin(500, shortText, true), error::DiskFull + 100) << "shrinks";
    EXPECT_EQ(contents(name), longText);
    EXPECT_EQ(overwriteWithin(RLIM_INFINITY, shortText, true), 0);
    EXPECT_EQ(contents(name), shortText);
}

TEST_F(Files, AFullFileSystemKeepsTheOldText)
{
    const int result = inChild([&] {
        const QByteArray place = QFile::encodeName(folder.path());
        const bool isSmall = unshare(CLONE_NEWNS) == 0 &&
                             mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                             mount("tmpfs", place.constData(), "tmpfs", 0, "size=64k") == 0;
        if (!isSmall) { // who may not mount one limits the files instead
            constexpr rlimit room{25000, 25000};
            setrlimit(RLIMIT_FSIZE, &room);
            signal(SIGXFSZ, SIG_IGN);
        }
        const QByteArray old(20000, 'o');
        const QString name = path("script.sql");
        if (save(name, old) != 0)
            return 1;
        save(path("filler"), QByteArray(40000, 'f'));
        const int grown = save(name, QByteArray(30000, 'n'));
        return contents(name) == old && names().filter(".quermo-").isEmpty() ? grown : 2;
    });
    EXPECT_EQ(result, error::DiskFull);
}

TEST_F(Files, AProcessKilledAtAnyMomentLeavesTheOldTextOrTheNew)
{
    const QString name = path("script.sql");
    const QByteArray texts[] = {QByteArray(400000, 'a'), QByteArray(250000, 'b')};
    write(name, texts[0]);
    const auto isWhole = [&](const QString& file) {
        const QByteArray found = contents(file);
        return found == texts[0] || found == texts[1];
    };
    std::srand(7);
    for (int round = 0; round < 60; ++round) {
        const pid_t child = fork();
        if (child == 0)
            for (int i = 1;; ++i)
                save(name, texts[i % 2]);
        usleep(static_cast<useconds_t>(1000 + std::rand() % 15000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const QStringList found = names();
        EXPECT_TRUE(
            std::any_of(found.begin(), found.end(), [&](const auto& file) { return isWhole(path(file)); }))
            << "round " << round;
        for (const QString& file : found)
            if (file != "script.sql")
                QFile::remove(path(file));
        if (!isWhole(name)) // the next round begins with a whole one, as after a look at the copy
            write(name, texts[0]);
    }
}

TEST_F(Files, ASaveLeavesTheFileWhatItWas)
{
    const QString name = path("script.sql");
    const QByteArray file = QFile::encodeName(name);
    write(name, longText);
    ASSERT_EQ(chmod(file.constData(), 0640), 0);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(file.constData(), nobody, nobody), 0);
    }
    const bool hasAttributes = setxattr(file.constData(), "user.note", "mine", 4, 0) == 0;
    ASSERT_EQ(link(file.constData(), QFile::encodeName(path("hard.sql")).constData()), 0);
    ASSERT_TRUE(QFile::link(name, path("soft.sql")));
    const auto before = statusOf(name);
    EXPECT_EQ(save(path("soft.sql"), shortText), 0);
    const auto after = statusOf(name);
    EXPECT_EQ(contents(path("hard.sql")), shortText);
    EXPECT_TRUE(QFileInfo(path("soft.sql")).isSymLink());
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_nlink, 2U);
    char note[4] = {};
    if (hasAttributes) {
        EXPECT_EQ(getxattr(file.constData(), "user.note", note, sizeof note), 4);
    }
    ASSERT_TRUE(QFile::link(path("later.sql"), path("dangling.sql")));
    EXPECT_EQ(save(path("dangling.sql"), "x"), 0);
    EXPECT_EQ(contents(path("later.sql")), "x");
}

TEST_F(Files, DevicesAndPipesAreWrittenTo)
{
    EXPECT_EQ(save("/dev/null", longText), 0);
    EXPECT_TRUE(S_ISCHR(statusOf("/dev/null").st_mode));
    const QByteArray pipe = QFile::encodeName(path("pipe"));
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    EXPECT_EQ(save(path("pipe"), "x"), error::DeviceIo) << "nobody reads; it doesn't wait for one";
    const Descriptor reader(open(pipe.constData(), O_RDONLY | O_NONBLOCK));
    EXPECT_EQ(save(path("pipe"), "through"), 0);
    char through[16] = {};
    EXPECT_EQ(read(reader.number(), through, sizeof through), 7);
    EXPECT_TRUE(S_ISFIFO(statusOf(path("pipe")).st_mode));
}

TEST_F(Files, ErrorsOfOpeningHaveTheirNumbers)
{
    const QString name = path("script.sql");
    write(name, shortText);
    chmod(QFile::encodeName(name).constData(), 0444);
    chmod(QFile::encodeName(folder.path()).constData(), 0755);
    EXPECT_EQ(asOrdinaryUser([&] { return save(name, "x"); }), error::PermissionDenied);
    chmod(QFile::encodeName(name).constData(), 0000);
    EXPECT_EQ(asOrdinaryUser([&] { return openToRead(name); }), error::PermissionDenied);
    for (const auto& open :
         {std::function<int(const QString&)>(openToRead),
          std::function<int(const QString&)>([](const auto& n) { return save(n, "x"); })}) {
        EXPECT_EQ(open(path("no/script.sql")), error::PathNotFound);
        EXPECT_EQ(open(name + "/script.sql"), error::PathNotFound);
        EXPECT_EQ(open(folder.path()), error::PathFileAccess);
        EXPECT_EQ(open(path(QString(300, QLatin1Char('n')))), error::PathFileAccess);
    }
    EXPECT_EQ(openToRead(path("none.sql")), error::FileNotFound);
    EXPECT_EQ(names(), QStringList{"script.sql"});
}

TEST_F(Files, AWritableFileInAForbiddenFolderIsSaved)
{
    const QString name = path("script.sql");
    write(name, shortText);
    chmod(QFile::encodeName(name).constData(), 0666);
    chmod(QFile::encodeName(folder.path()).constData(), 0555);
    EXPECT_EQ(asOrdinaryUser([&] { return save(name, longText); }), 0);
    EXPECT_EQ(asOrdinaryUser([&] { return save(path("other.sql"), longText); }), error::PermissionDenied);
    chmod(QFile::encodeName(folder.path()).constData(), 0755);
    EXPECT_EQ(contents(name), longText);
}

TEST_F(Files, WhatCameBeforeAReadErrorStays)
{
    const int controller = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(controller >= 0 && grantpt(controller) == 0 && unlockpt(controller) == 0);
    {
        const Descriptor terminal(open(ptsname(controller), O_WRONLY | O_NOCTTY));
        ASSERT_EQ(::write(terminal.number(), "one\ntwo", 7), 7);
    }
    QByteArray bytes;
    const InputFile file{Descriptor(controller)};
    EXPECT_THROW(file.readAll(bytes), RuntimeError);
    EXPECT_EQ(bytes, "one\r\ntwo");
}

} // namespace
} // namespace basic
