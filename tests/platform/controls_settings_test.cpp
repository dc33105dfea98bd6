// The user's settings: what was written is read back with its type, and nothing that stands in the file
// hurts.
#include "core/mdlRegistro.h"
#include "platform/basic/VariantText.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include <limits>

namespace {

const QString Key = QStringLiteral("Software\\quermo");

class Settings : public ::testing::Test
{
protected:
    void SetUp() override { QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path()); }

    static bool write(const QString& name, const basic::Variant& value, int type)
    {
        return EscribirValor(HKEY_CURRENT_USER, Key, name, value, type);
    }
    static basic::Variant read(const QString& name) { return LeerValor(HKEY_CURRENT_USER, Key, name); }
    [[nodiscard]] QString path() const { return folder.filePath("quermo.ini"); }

    QTemporaryDir folder;
};

} // namespace

TEST_F(Settings, ValuesComeBackWithTheirType)
{
    ASSERT_TRUE(CrearClave(HKEY_CURRENT_USER, Key));
    EXPECT_TRUE(read("Idioma").isEmpty());
    const QString odd = QString::fromUtf8("ñ; \"x\" = a\\b,c\r\n%20 text:1");
    const struct
    {
        basic::Variant value;
        int type;
        basic::Variant expected;
    } cases[] = {{1, ValorNumero, 1},
                 {QString("1"), ValorNumero, 1},
                 {std::numeric_limits<int>::min(), ValorNumero, std::numeric_limits<int>::min()},
                 {QString("1"), ValorTexto, QString("1")},
                 {1, ValorTexto, QString("1")},
                 {QString(), ValorTexto, QString()},
                 {odd, ValorTexto, odd}};
    for (const auto& each : cases) {
        EXPECT_TRUE(write("Idioma", each.value, each.type));
        EXPECT_EQ(read("Idioma"), each.expected) << basic::text(each.value).toStdString();
    }
    EXPECT_TRUE(LeerValor(HKEY_CURRENT_USER, "Software\\other", "Idioma").isEmpty());
    EXPECT_TRUE(QFile::exists(path()));
}

TEST_F(Settings, WhatCannotBeWrittenIsToldAndLeavesTheOldValue)
{
    ASSERT_TRUE(write("Idioma", 1, ValorNumero));
    EXPECT_FALSE(write("Idioma", 0, 3)) << "a type that is not kept";
    EXPECT_FALSE(write("Idioma", QString("abc"), ValorNumero));
    EXPECT_FALSE(write("Idioma", 3e9, ValorNumero));
    EXPECT_EQ(read("Idioma"), basic::Variant(1));

    QFile(folder.filePath("file")).open(QIODevice::WriteOnly);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.filePath("file/below"));
    EXPECT_FALSE(CrearClave(HKEY_CURRENT_USER, Key));
    EXPECT_FALSE(write("Idioma", 1, ValorNumero));
    EXPECT_TRUE(read("Idioma").isEmpty());
}

TEST_F(Settings, WhatTheAdministratorLeftIsNotTheUsers)
{
    const QTemporaryDir machine;
    QSettings::setPath(QSettings::IniFormat, QSettings::SystemScope, machine.path());
    QFile file(machine.filePath("quermo.ini"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Software]\nquermo\\Idioma=1\n");
    file.close();
    EXPECT_TRUE(read("Idioma").isEmpty());
}

TEST_F(Settings, RubbishInTheFileReadsAsEmpty)
{
    for (const char* content :
         {"", "\xff\xfe\x00\x01", "[Software]\nquermo\\Idioma=", "[Software]\nquermo\\Idioma=abc",
          "[Software]\nquermo\\Idioma=99999999999", "[Software]\nquermo\\Idioma=@Variant(\\0\\0\\0)",
          "[Software]\nquermo\\Idioma=1, 2", "[Software\nquermo\\Idioma 1"}) {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
        file.close();
        EXPECT_TRUE(read("Idioma").isEmpty()) << content;
    }
    EXPECT_TRUE(write("Idioma", 1, ValorNumero));
    EXPECT_EQ(read("Idioma"), basic::Variant(1)) << "and can be written over";
}
