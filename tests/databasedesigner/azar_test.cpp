// Random but possible edits of files, groups, options and the name through the real form, accepted again and
// again: what the server then has must equal a model kept beside it. QUERMO_RANDOM_EDITS and
// QUERMO_RANDOM_SEED change how many and which.
#include "Estudio.h"

#include <QMap>

#include <algorithm>
#include <random>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {
namespace {

constexpr int PaginasPorMB = 128;
constexpr qint64 SinLimite = -1;
constexpr qint64 SinLimiteLog = 268'435'456; // pages: what a log without a limit has

struct Archivo
{
    QString nombre;
    qint64 paginas = 0; ///< on the server
    int megas = 0;      ///< as the cell has them
    int cantidad = 0;
    bool porciento = true;
    qint64 maximo = SinLimite; ///< in pages
    QString grupo;             ///< empty for a log
    bool nuevo = false;

    [[nodiscard]] bool esLog() const { return grupo.isEmpty(); }
};

} // namespace

class AzarBD : public Estudio
{
protected:
    int Hasta(int n) { return std::uniform_int_distribution<int>(0, n - 1)(m_azar); }
    void Anota(const QString& paso) { m_pasos += paso + u"; "_s; }

    controls::DataGrid* Rejilla(bool log)
    {
        mano::ClicPestaña(m_forma->sstBaseDatos, log ? Pagina::Transacciones : Pagina::Archivos);
        return log ? m_forma->TDBGridTransacciones : m_forma->TDBGridArchivos;
    }
    [[nodiscard]] int Fila(bool log, const QString& nombre) const
    {
        const Matriz& archivos = log ? m_forma->Datos.TransaccionesBD : m_forma->Datos.ArchivosBD;
        int fila = 0;
        while (archivos.at(fila, ColArchivo::Nombre) != nombre)
            ++fila;
        return fila;
    }
    /// Some file of one kind; the first of each kind is the one that can't go.
    Archivo& Alguno(bool log, bool menosElPrimero = false)
    {
        QList<Archivo*> todos;
        for (Archivo& archivo : m_archivos)
            if (archivo.esLog() == log)
                todos += &archivo;
        const int desde = menosElPrimero ? 1 : 0;
        return *todos[desde + Hasta(static_cast<int>(todos.size()) - desde)];
    }
    [[nodiscard]] qsizetype Cuantos(bool log) const
    {
        return std::ranges::count(m_archivos, log, &Archivo::esLog);
    }

    // removals, which act at once and read the grids again
    void QuitaArchivo()
    {
        const bool log = Hasta(3) == 0;
        if (Cuantos(log) < 2)
            return;
        const QString nombre = Alguno(log, true).nombre;
        Anota(u"remove "_s + nombre);
        mano::ClicCelda(Rejilla(log), Fila(log, nombre), ColArchivo::Nombre);
        mano::Clic(log ? m_forma->cmdEliminarFilaTransacciones : m_forma->cmdEliminarFilaArchivos);
        m_archivos.removeIf([&](const Archivo& archivo) { return archivo.nombre == nombre; });
    }
    void QuitaGrupo()
    {
        const int fila = 1 + Hasta(4);
        const QString grupo = m_forma->Datos.GruposBD.at(fila, ColGrupo::Nombre);
        if (grupo.isEmpty())
            return;
        Anota(u"remove group "_s + grupo);
        mano::ClicPestaña(m_forma->sstBaseDatos, Pagina::Grupos);
        mano::ClicCelda(m_forma->TDBGridGrupos, fila, ColGrupo::Nombre);
        mano::Clic(m_forma->cmdEliminarFilaGrupos);
        const bool ocupado = std::ranges::count(m_archivos, grupo, &Archivo::grupo) > 0;
        EXPECT_EQ(Textos().size(), ocupado ? 1 : 0);
        if (!ocupado)
            m_grupos.removeOne(grupo);
    }

    // edits, which wait for Accept
    void AñadeGrupo()
    {
        if (m_grupos.size() >= 5)
            return;
        const QString grupo = u"G%1"_s.arg(++m_nombres);
        Anota(u"group "_s + grupo);
        mano::ClicPestaña(m_forma->sstBaseDatos, Pagina::Grupos);
        mano::PonCelda(m_forma->TDBGridGrupos, static_cast<int>(m_grupos.size()), ColGrupo::Nombre, grupo);
        m_grupos += grupo;
    }
    void AñadeArchivo()
    {
        const bool log = Hasta(3) == 0;
        const auto fila = static_cast<int>(Cuantos(log));
        if (fila >= (log ? 3 : 6))
            return;
        const QString grupo = log ? QString() : m_grupos[Hasta(static_cast<int>(m_grupos.size()))];
        const Archivo nuevo{u"f%1"_s.arg(++m_nombres),      0,     1 + Hasta(40), 10, true,
                            log ? SinLimiteLog : SinLimite, grupo, true};
        Anota(u"add %1 %2 MB %3"_s.arg(nuevo.nombre).arg(nuevo.megas).arg(nuevo.grupo));
        auto* rejilla = Rejilla(log);
        mano::PonCelda(rejilla, fila, ColArchivo::Nombre, nuevo.nombre);
        mano::Escribe(Carpeta());
        mano::Tecla(Qt::Key_Return);
        mano::Escribe(QString::number(nuevo.megas));
        mano::Tecla(Qt::Key_Return);
        if (!log)
            mano::PonCelda(rejilla, fila, ColArchivo::Grupo, nuevo.grupo);
        m_archivos += nuevo;
    }
    void CambiaCrecimiento()
    {
        Archivo& archivo = Alguno(Hasta(3) == 0);
        PonCrecimiento(archivo, archivo.megas + Hasta(50), Hasta(2) == 1);
    }
    void PonCrecimiento(Archivo& archivo, int cantidad, bool porciento)
    {
        archivo.cantidad = cantidad;
        archivo.porciento = porciento;
        Anota(u"growth %1 %2 %3"_s.arg(archivo.nombre).arg(cantidad).arg(porciento ? u"%"_s : u"M"_s));
        auto* rejilla = Rejilla(archivo.esLog());
        const int fila = Fila(archivo.esLog(), archivo.nombre);
        mano::PonCelda(rejilla, fila, ColArchivo::Unidad, porciento ? u"En P"_s : u"En M"_s);
        mano::PonCelda(rejilla, fila, ColArchivo::Cantidad, QString::number(cantidad));
    }
    void Ensancha()
    {
        Archivo& archivo = Alguno(Hasta(3) == 0);
        if (archivo.megas > 100)
            return;
        archivo.megas += 1 + Hasta(15);
        // A growth below the size would be sent in its place, and refused as a smaller one.
        if (archivo.cantidad < archivo.megas)
            PonCrecimiento(archivo, archivo.megas + Hasta(10), archivo.porciento);
        Anota(u"size %1 %2"_s.arg(archivo.nombre).arg(archivo.megas));
        mano::PonCelda(Rejilla(archivo.esLog()), Fila(archivo.esLog(), archivo.nombre), ColArchivo::Tamaño,
                       QString::number(archivo.megas));
    }
    void CambiaLimite()
    {
        Archivo& archivo = Alguno(Hasta(3) == 0);
        auto* rejilla = Rejilla(archivo.esLog());
        const int fila = Fila(archivo.esLog(), archivo.nombre);
        const Matriz& matriz = archivo.esLog() ? m_forma->Datos.TransaccionesBD : m_forma->Datos.ArchivosBD;
        const bool limitado = EstaMarcado(matriz.at(fila, ColArchivo::Limitado));
        if (limitado && Hasta(2) == 0) {
            Anota(u"no limit "_s + archivo.nombre);
            mano::ClicCelda(rejilla, fila, ColArchivo::Limitado);
            archivo.maximo = archivo.esLog() ? SinLimiteLog : SinLimite;
            return;
        }
        const int megas = 5000 + Hasta(100);
        Anota(u"limit %1 %2"_s.arg(archivo.nombre).arg(megas));
        if (!limitado)
            mano::ClicCelda(rejilla, fila, ColArchivo::Limitado);
        mano::PonCelda(rejilla, fila, ColArchivo::Maximo, QString::number(megas));
        archivo.maximo = megas * PaginasPorMB;
    }
    /// The row becomes a new file, and the old one stays as the server has it.
    void Rebautiza()
    {
        const bool log = Hasta(3) == 0;
        if (Cuantos(log) < 2 || Cuantos(log) + m_quedan.size() >= 7)
            return;
        Archivo& archivo = Alguno(log, true);
        if (archivo.nuevo || m_rebautizados.contains(archivo.nombre))
            return;
        const QString antes = archivo.nombre;
        const QString nombre = u"f%1"_s.arg(++m_nombres);
        Anota(u"new name %1 %2"_s.arg(antes, nombre));
        auto* rejilla = Rejilla(log);
        const int fila = Fila(log, antes);
        mano::PonCelda(rejilla, fila, ColArchivo::Nombre, nombre);
        if (!log)
            mano::PonCelda(rejilla, fila, ColArchivo::Grupo, archivo.grupo);
        archivo.nombre = nombre;
        archivo.nuevo = true;
        m_rebautizados += antes;
        m_quedan += *std::ranges::find(m_alAbrir, antes, &Archivo::nombre);
    }
    void CambiaOpcion()
    {
        const QMap<QString, QCheckBox*> cajas{
            {u"IsAnsiNullDefault"_s, m_forma->chkNULL},
            {u"IsAutoCreateStatistics"_s, m_forma->chkCrearEstadisticas},
            {u"IsAutoUpdateStatistics"_s, m_forma->chkActEstadisticas},
            {u"IsAutoClose"_s, m_forma->chkCerrar},
            {u"IsQuotedIdentifiersEnabled"_s, m_forma->chkIdenComillas},
            {u"IsTornPageDetectionEnabled"_s, m_forma->chkPaginaRasgada},
            {u"IsAutoShrink"_s, m_forma->chkReducir},
            {u"IsRecursiveTriggersEnabled"_s, m_forma->chkDesencadenadores}};
        const QStringList nombres = cajas.keys();
        const QString nombre = nombres[Hasta(static_cast<int>(nombres.size()))];
        Anota(u"option "_s + nombre);
        mano::ClicPestaña(m_forma->sstBaseDatos, Pagina::Opciones);
        mano::Clic(cajas[nombre]);
        m_opciones[nombre] = !m_opciones[nombre];
    }
    void CambiaNombre()
    {
        m_base = m_base == u"Obra"_s ? u"Obra2"_s : u"Obra"_s;
        Anota(u"database "_s + m_base);
        Nombra(m_forma, m_base);
    }

    void Guarda()
    {
        EXPECT_EQ(Textos(), QStringList());
        EXPECT_TRUE(Acepta(m_forma));
        EXPECT_EQ(Textos(), QStringList());
        m_archivos += m_quedan;
        for (Archivo& archivo : m_archivos) {
            const bool crece = archivo.megas * PaginasPorMB > archivo.paginas;
            if (archivo.nuevo || crece)
                archivo.paginas = std::min(archivo.megas, archivo.cantidad) * PaginasPorMB;
            archivo.megas = static_cast<int>(archivo.paginas / PaginasPorMB);
            archivo.nuevo = false;
        }
        EXPECT_EQ(DelServidor(), DelModelo());
    }
    [[nodiscard]] QString DelModelo() const
    {
        QStringList lineas = m_grupos;
        for (const Archivo& archivo : m_archivos)
            lineas += u"%1 %2 %3 %4 %5 %6"_s.arg(archivo.nombre)
                          .arg(archivo.paginas)
                          .arg(archivo.cantidad * (archivo.porciento ? 1 : PaginasPorMB))
                          .arg(archivo.porciento ? u"P"_s : u"M"_s)
                          .arg(archivo.maximo)
                          .arg(archivo.esLog() ? u"LOG"_s : archivo.grupo);
        for (auto opcion = m_opciones.begin(); opcion != m_opciones.end(); ++opcion)
            lineas += u"%1=%2"_s.arg(opcion.key()).arg(*opcion ? 1 : 0);
        lineas.sort();
        return lineas.join(u'\n');
    }
    [[nodiscard]] QString DelServidor() const
    {
        const auto lista = [](const QString& consulta) {
            return Consulta(consulta).split(u'|', Qt::SkipEmptyParts);
        };
        QStringList lineas = lista(u"select groupname from "_s + m_base + u"..sysfilegroups"_s);
        lineas +=
            lista(u"select rtrim(f.name) + ' ' + cast(f.size as varchar) + ' ' + cast(f.growth as varchar) + "
                  u"case when f.status & 1048576 <> 0 then ' P ' else ' M ' end + cast(f.maxsize as varchar) "
                  u"+ ' ' + isnull(g.groupname, 'LOG') from %1..sysfiles f left join %1..sysfilegroups g on "
                  u"g.groupid = f.groupid"_s.arg(m_base));
        for (const QString& opcion : m_opciones.keys())
            lineas += lista(
                u"select '%2=' + cast(databasepropertyex('%1', '%2') as varchar)"_s.arg(m_base, opcion));
        lineas.sort();
        return lineas.join(u'\n');
    }

    void Ronda()
    {
        using Edicion = void (AzarBD::*)();
        const Edicion ediciones[] = {&AzarBD::AñadeGrupo,        &AzarBD::AñadeArchivo, &AzarBD::AñadeArchivo,
                                     &AzarBD::CambiaCrecimiento, &AzarBD::Ensancha,     &AzarBD::CambiaLimite,
                                     &AzarBD::Rebautiza,         &AzarBD::CambiaOpcion};
        m_alAbrir = m_archivos;
        m_quedan.clear();
        m_rebautizados.clear();
        m_pasos.clear();
        if (Hasta(3) == 0)
            QuitaArchivo();
        if (Hasta(3) == 0)
            QuitaGrupo();
        for (int n = 2 + Hasta(5); n > 0 && !HasFailure(); --n, ++m_hechas)
            (this->*ediciones[Hasta(static_cast<int>(std::size(ediciones)))])();
        if (Hasta(5) == 0)
            CambiaNombre();
        Guarda();
    }

    QList<Archivo> m_archivos, m_alAbrir, m_quedan;
    QStringList m_grupos, m_rebautizados;
    QMap<QString, bool> m_opciones;
    QString m_base = u"Obra"_s;
    formularios::frmPropiedadesBD* m_forma = nullptr;
    QString m_pasos;
    int m_nombres = 0;
    int m_hechas = 0;
    std::mt19937 m_azar;
};

TEST_F(AzarBD, WhatIsEditedIsWhatTheServerHas)
{
    const int semilla = EntornoONumero("QUERMO_RANDOM_SEED", 7);
    m_azar.seed(static_cast<unsigned>(semilla));
    Prepara(Es, {u"use master"_s, u"if db_id('Obra2') is not null drop database Obra2"_s});
    m_grupos = {u"PRIMARY"_s};
    m_archivos = {{u"Obra"_s, 2 * PaginasPorMB, 2, 10, true, SinLimite, u"PRIMARY"_s, false},
                  {u"Obra_log"_s, PaginasPorMB, 1, 10, true, SinLimiteLog, {}, false}};
    m_opciones = {{u"IsAnsiNullDefault"_s, false},
                  {u"IsAutoCreateStatistics"_s, true},
                  {u"IsAutoUpdateStatistics"_s, true},
                  {u"IsAutoClose"_s, false},
                  {u"IsQuotedIdentifiersEnabled"_s, false},
                  {u"IsTornPageDetectionEnabled"_s, true},
                  {u"IsAutoShrink"_s, false},
                  {u"IsRecursiveTriggersEnabled"_s, false}};
    ASSERT_EQ(DelServidor(), DelModelo());
    const int total = EntornoONumero("QUERMO_RANDOM_EDITS", 150);
    while (m_hechas < total && !HasFailure()) {
        m_forma = Propiedades(m_base);
        ASSERT_NE(m_forma, nullptr);
        Ronda();
        ASSERT_FALSE(HasFailure()) << "seed " << semilla
                                   << ", since the last accept: " << m_pasos.toStdString();
    }
    Ejecuta({u"use master"_s, u"drop database "_s + m_base});
}

} // namespace pruebas
