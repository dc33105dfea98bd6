// Each statement of a save fails once: refused, and with the connection lost.
#include "core/Global.h"
#include "platform/ado/Transcript.h"
#include "platform/basic/RuntimeError.h"
#include "tabledesigner/Campos.h"
#include "tabledesigner/Taller.h"

#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

class Fallos : public Taller
{
protected:
    using Historia = std::function<std::unique_ptr<DatosTabla>()>;

    /// A new table with everything.
    static std::unique_ptr<DatosTabla> TablaNueva()
    {
        auto datos = Nueva(u"mi t"_s);
        Escribe(*datos, 0, {u"a"_s, 8, {}, u"0"_s});
        Escribe(*datos, 1, {u"b"_s, 8, {}, u"-1"_s, u"1"_s});
        PonIndice(*datos, u"PK_t"_s, {u"a"_s}, true);
        PonIndice(*datos, u"ib"_s, {u"b"_s});
        PonRelacion(*datos, u"FK_t"_s, u"b"_s, u"padre"_s, u"p"_s);
        return datos;
    }
    /// A table that others hang on, with a column renamed, one changed, one new and one lost.
    static std::unique_ptr<DatosTabla> TablaCambiada()
    {
        auto datos = Abre(u"padre"_s);
        Edita(*datos, 1, ColCampo::Nombre, u"otro"_s);
        datos->CamposTabla(1, ColCampo::Longitud) = u"20"_s;
        Escribe(*datos, 3, {u"nuevo"_s, 8});
        EliminaCampo(*datos, 2);
        return datos;
    }
    /// A key column changed that another table's column hangs on.
    static std::unique_ptr<DatosTabla> ClaveCambiada()
    {
        auto datos = Abre(u"padre"_s);
        datos->CamposTabla(0, ColCampo::Tipo) = u"16"_s;
        datos->CamposTabla(0, ColCampo::Longitud) = u"2"_s;
        for (int columna = 0; columna <= ColCampo::UltimaVisible; ++columna)
            datos->FilaActual.Celdas[static_cast<std::size_t>(columna)] = datos->CamposTabla.at(0, columna);
        return datos;
    }

    std::unique_ptr<DatosTabla> Prepara(const Historia& historia)
    {
        VaciaBase();
        Ejecuta({u"create table padre (p int not null constraint PK_p primary key, v varchar(10) null, s int "
                 u"null "
                 u"constraint DF_padre_s default (1))"_s,
                 u"create index iv on padre (v)"_s,
                 u"create table hija (h int null constraint FK_h references padre (p))"_s});
        auto datos = historia();
        Avisos();
        return datos;
    }

    /// Has `fallo` called in place of, or just before, the statement number `k` of what follows.
    static void Falla(int k, std::function<void()> fallo)
    {
        ado::setStatementObserver([k, n = 0, fallo = std::move(fallo)](const QString&) mutable {
            if (++n == k)
                fallo();
        });
    }
    static int CuentaSentencias(DatosTabla& datos, bool& guardada)
    {
        int cuenta = 0;
        ado::setStatementObserver([&cuenta](const QString&) { ++cuenta; });
        guardada = Guarda(datos);
        ado::setStatementObserver({});
        return cuenta;
    }

    void CadaSentenciaRechazada(const Historia& historia)
    {
        bool guardada = false;
        const int sentencias = CuentaSentencias(*Prepara(historia), guardada);
        ASSERT_TRUE(guardada) << Avisos().join(u'\n').toStdString();
        const QString despues = Catalogo();
        for (int k = 1; k <= sentencias; ++k) {
            SCOPED_TRACE(k);
            const auto datos = Prepara(historia);
            const QString antes = Catalogo();
            Falla(k, [] { basic::raise(50000, u"rechazada"_s); });
            const bool vale = Guarda(*datos);
            ado::setStatementObserver({});
            const QStringList avisos = Avisos();
            ASSERT_FALSE(avisos.isEmpty());
            EXPECT_EQ(avisos[0], u" Error Nº:50000 (rechazada)."_s);
            EXPECT_EQ(TransaccionesAbiertas(), 0);
            EXPECT_TRUE(vale || Catalogo() == antes) << Catalogo().toStdString();
            // After a save the window is gone, and the table is opened again.
            const auto otra = vale ? Abre(datos->NombreTabla) : nullptr;
            EXPECT_TRUE(Guarda(vale ? *otra : *datos)) << Avisos().join(u'\n').toStdString();
            EXPECT_EQ(TransaccionesAbiertas(), 0);
            EXPECT_EQ(Avisos(), QStringList());
            EXPECT_TRUE(vale || Catalogo() == despues) << Catalogo().toStdString();
        }
    }

    void CadaConexionPerdida(const Historia& historia)
    {
        bool guardada = false;
        const int sentencias = CuentaSentencias(*Prepara(historia), guardada);
        ASSERT_TRUE(guardada) << Avisos().join(u'\n').toStdString();
        const QString despues = Catalogo();
        for (int k = 1; k <= sentencias; ++k) {
            SCOPED_TRACE(k);
            const auto datos = Prepara(historia);
            const QString antes = Catalogo();
            Falla(k, [] {
                Red().setFault(
                    {.kind = support::Fault::Kind::Close, .direction = support::Fault::Direction::ToServer});
            });
            EXPECT_FALSE(Guarda(*datos));
            ado::setStatementObserver({});
            Red().setFault({});
            ASSERT_FALSE(Avisos().isEmpty());
            Conecta();
            EXPECT_EQ(Catalogo(), antes);
            EXPECT_TRUE(Guarda(*datos)) << Avisos().join(u'\n').toStdString();
            EXPECT_EQ(Catalogo(), despues);
            EXPECT_EQ(TransaccionesAbiertas(), 0);
        }
    }
};

TEST_F(Fallos, EachStatementOfANewTableRefused)
{
    CadaSentenciaRechazada(TablaNueva);
}

TEST_F(Fallos, EachStatementOfAChangedTableRefused)
{
    CadaSentenciaRechazada(TablaCambiada);
}

TEST_F(Fallos, EachStatementOfAChangedKeyRefused)
{
    CadaSentenciaRechazada(ClaveCambiada);
}

TEST_F(Fallos, TheConnectionLostAtEachStatement)
{
    CadaConexionPerdida(TablaNueva);
    CadaConexionPerdida(TablaCambiada);
    CadaConexionPerdida(ClaveCambiada);
}

TEST_F(Fallos, WhatCouldNotBeLoadedIsNotTakenForDeleted)
{
    const auto abre = [] { return Abre(u"mi t"_s); };
    const auto completa = [] {
        Guarda(*TablaNueva());
        return TablaNueva();
    };
    Prepara(completa);
    int sentencias = 0;
    ado::setStatementObserver([&sentencias](const QString&) { ++sentencias; });
    abre();
    ado::setStatementObserver({});
    for (int k = 1; k <= sentencias; ++k) {
        SCOPED_TRACE(k);
        Prepara(completa);
        const QString antes = Catalogo();
        Falla(k, [] { basic::raise(50000, u"rechazada"_s); });
        const auto datos = abre();
        ado::setStatementObserver({});
        EXPECT_EQ(Avisos(), QStringList{u" Error Nº:50000 (rechazada)."_s});
        Guarda(*datos);
        EXPECT_EQ(Catalogo(), antes);
        EXPECT_EQ(TransaccionesAbiertas(), 0);
    }
}

TEST_F(Fallos, OnlyTheRefusalOfTheRenameItselfIsPassedOver)
{
    for (const int numero : {15248, 15253}) {
        const auto datos = Prepara(TablaNueva);
        Falla(5, [numero] { basic::raise(numero, u"de sp_rename"_s); });
        EXPECT_TRUE(Guarda(*datos));
        EXPECT_EQ(Avisos(), QStringList());
    }
    for (const int numero : {1205, -2147467259, 102}) {
        const auto datos = Prepara(TablaNueva);
        Falla(5, [numero] { basic::raise(numero, u"otra cosa"_s); });
        EXPECT_FALSE(Guarda(*datos));
        EXPECT_EQ(Avisos().size(), 1) << numero;
        EXPECT_EQ(TransaccionesAbiertas(), 0);
    }
    const auto datos = Prepara(TablaCambiada);
    datos->CamposTabla(1, ColCampo::Nombre) = u"p"_s;
    EXPECT_FALSE(Guarda(*datos)) << "a row that the server has is no such case";
    EXPECT_EQ(Avisos().size(), 1);
}

} // namespace pruebas
