// Random but possible edits through the real form, saved again and again: what the server then has must equal
// a model kept beside it. QUERMO_RANDOM_EDITS and QUERMO_RANDOM_SEED change how many and which.
#include "Mesa.h"

#include "core/mdiPrincipal.h"
#include "platform/controls/Pointer.h"

#include <QMap>
#include <QRegularExpression>

#include <algorithm>
#include <random>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {
namespace {

struct Columna
{
    QString nombre;
    QString tipo;
    int longitud = 0;
    bool nulo = false;
    QString predeterminado;
    QString nacida; ///< its name when it was made, which its default bears; empty until the server has it
};

/// The types that convert into each other, and the length that a new column takes.
const QMap<QString, int>& Tipos()
{
    static const QMap<QString, int> tipos{{u"int"_s, 4},     {u"smallint"_s, 2},  {u"tinyint"_s, 1},
                                          {u"varchar"_s, 8}, {u"nvarchar"_s, 50}, {u"char"_s, 10}};
    return tipos;
}

bool EsTexto(const QString& tipo)
{
    return tipo.endsWith(u"char"_s);
}

} // namespace

class Azar : public Mesa
{
public:
    int Hasta(int n) { return std::uniform_int_distribution<int>(0, n - 1)(m_azar); }
    template <class Lista>
    auto& UnoDe(Lista& lista)
    {
        return lista[Hasta(static_cast<int>(lista.size()))];
    }
    QString NombreNuevo() { return u"c%1"_s.arg(++m_nombres); }
    QString TipoCualquiera()
    {
        const QStringList tipos = Tipos().keys();
        return UnoDe(tipos);
    }
    void Anota(const QString& paso) { m_pasos += paso + u"; "_s; }

    /// A column that neither a key nor an index nor a relation holds; -1 for none.
    int ColumnaLibre()
    {
        QList<int> libres;
        for (int fila = 0; fila < columnas.size(); ++fila)
            if (!EnUso(columnas[fila].nombre))
                libres += fila;
        return libres.isEmpty() ? -1 : UnoDe(libres);
    }
    bool EnUso(const QString& nombre) const
    {
        for (const QStringList& campos : indices)
            if (campos.contains(nombre))
                return true;
        // The keys of the server go last in a save, so that a column is not free before the next one.
        return relaciones.values().contains(nombre) || m_conClave.contains(nombre);
    }

    // the edits, each by hand in the form and in the model
    void Añade()
    {
        if (columnas.size() >= 12)
            return;
        Columna nueva{NombreNuevo(), TipoCualquiera(), 0, Hasta(2) == 1, QString(), {}};
        nueva.predeterminado = Hasta(2) == 1 || nueva.nulo ? QString::number(Hasta(200)) : QString();
        nueva.longitud = Tipos()[nueva.tipo];
        const auto fila = static_cast<int>(columnas.size());
        Anota(u"add %1 %2"_s.arg(nueva.nombre, nueva.tipo));
        VeA(rejilla(), fila, ColCampo::Nombre);
        Escribe(nueva.nombre);
        Tecla(Qt::Key_Return);
        Escribe(nueva.tipo);
        Tecla(Qt::Key_Return);
        if (!nueva.predeterminado.isEmpty())
            PonCelda(rejilla(), fila, ColCampo::Predeterminado, nueva.predeterminado);
        if (nueva.nulo) {
            VeA(rejilla(), fila, ColCampo::Nulo);
            Tecla(Qt::Key_Space);
        }
        VeA(rejilla(), 0, ColCampo::Nombre);
        columnas += nueva;
    }
    void Renombra()
    {
        const int fila = Hasta(static_cast<int>(columnas.size()));
        Columna& columna = columnas[fila];
        if (m_renombradas.contains(columna.nombre))
            return; // a second new name would not reach the indexes
        const QString antes = columna.nombre;
        columna.nombre = NombreNuevo();
        m_renombradas += columna.nombre;
        Anota(u"rename %1 %2"_s.arg(antes, columna.nombre));
        VeA(rejilla(), fila, ColCampo::Nombre);
        Escribe(columna.nombre);
        VeA(rejilla(), 0, ColCampo::Nombre);
        if (columna.nacida.isEmpty() && EnUso(antes)) // only a loaded column's new name goes into the lines
            columna.nombre = antes;
        for (QStringList& campos : indices)
            campos.replaceInStrings(QRegularExpression(u"^%1$"_s.arg(antes)), columna.nombre);
        for (QString& campo : relaciones)
            campo = campo == antes ? columna.nombre : campo;
        m_conClave.replaceInStrings(QRegularExpression(u"^%1$"_s.arg(antes)), columna.nombre);
    }
    void CambiaTipo()
    {
        const int fila = ColumnaLibre();
        if (fila < 0)
            return;
        Columna& columna = columnas[fila];
        const QString antes = columna.tipo;
        columna.tipo = TipoCualquiera();
        Anota(u"type %1 %2"_s.arg(columna.nombre, columna.tipo));
        PonCelda(rejilla(), fila, ColCampo::Tipo, columna.tipo);
        VeA(rejilla(), 0, ColCampo::Nombre);
        if (columna.nacida.isEmpty())
            columna.longitud = Tipos()[columna.tipo];
    }
    void CambiaLongitud()
    {
        const int fila = ColumnaLibre();
        if (fila < 0 || !EsTexto(columnas[fila].tipo))
            return;
        const int longitud = 1 + Hasta(99);
        if (longitud == 2 * columnas[fila].longitud)
            return; // the bytes of the length on the server: taken for no change
        columnas[fila].longitud = longitud;
        Anota(u"length %1 %2"_s.arg(columnas[fila].nombre).arg(columnas[fila].longitud));
        PonCelda(rejilla(), fila, ColCampo::Longitud, QString::number(columnas[fila].longitud));
        VeA(rejilla(), 0, ColCampo::Nombre);
    }
    void CambiaNulo()
    {
        const int fila = ColumnaLibre();
        if (fila < 0)
            return;
        columnas[fila].nulo = !columnas[fila].nulo;
        Anota(u"null %1"_s.arg(columnas[fila].nombre));
        VeA(rejilla(), fila, ColCampo::Nulo);
        Tecla(Qt::Key_Space);
        VeA(rejilla(), 0, ColCampo::Nombre);
    }
    void Quita()
    {
        const int fila = ColumnaLibre();
        if (fila <= 0)
            return;
        // A drop takes the default of the column's name along, and fails where there is none.
        const Columna& columna = columnas[fila];
        const bool conDF = !columna.predeterminado.isEmpty() && columna.nacida == columna.nombre;
        if (!columna.nacida.isEmpty() && !conDF)
            return;
        Anota(u"drop %1"_s.arg(columnas[fila].nombre));
        VeA(rejilla(), fila, ColCampo::Nombre);
        respuesta = controls::Answer::Yes;
        Tecla(Qt::Key_Delete);
        VeA(rejilla(), 0, ColCampo::Nombre);
        columnas.removeAt(fila);
    }
    void PonIndice()
    {
        if (indices.size() >= 4)
            return;
        const QString nombre = u"i%1"_s.arg(++m_nombres);
        QStringList campos;
        Pagina(m_forma, 1);
        Clic(m_forma->cmdNuevoIndice);
        Escribe(nombre);
        Tecla(Qt::Key_Return);
        for (int linea = 0; linea < 1 + Hasta(2) && campos.size() < columnas.size(); ++linea) {
            const QString campo = UnoDe(columnas).nombre;
            if (campos.contains(campo))
                continue;
            VeA(m_forma->TDBGridIndices, static_cast<int>(campos.size()), ColCampoIndice::Nombre);
            Tecla(Qt::Key_F4);
            Tecla(Qt::Key_Escape); // the list is filled by now
            Escribe(campo);
            Tecla(Qt::Key_Down);
            campos += campo;
        }
        Anota(u"index %1 %2"_s.arg(nombre, campos.join(u',')));
        Pagina(m_forma, 0);
        indices[nombre] = campos;
    }
    void QuitaIndice()
    {
        if (indices.isEmpty())
            return;
        const QStringList nombres = indices.keys();
        const QString nombre = UnoDe(nombres);
        // An index of the server is not dropped by the design; only one that was drawn since can go.
        if (m_guardados.contains(nombre))
            return;
        Anota(u"no index %1"_s.arg(nombre));
        Pagina(m_forma, 1);
        m_forma->cboIndices->setFocus();
        Tecla(Qt::Key_Home);
        for (int n = 0; n < m_forma->cboIndices->ListCount() && m_forma->cboIndices->Text() != nombre; ++n)
            Tecla(Qt::Key_Down);
        ASSERT_EQ(m_forma->cboIndices->Text(), nombre);
        Clic(m_forma->cmdEliminarIndice);
        Pagina(m_forma, 0);
        indices.remove(nombre);
    }
    void PonRelacion()
    {
        QStringList enteras;
        for (const Columna& columna : columnas)
            if (columna.tipo == u"int"_s)
                enteras += columna.nombre;
        if (enteras.isEmpty() || relaciones.size() >= 3)
            return;
        const QString nombre = u"FK%1"_s.arg(++m_nombres);
        const QString campo = UnoDe(enteras);
        Anota(u"relation %1 %2"_s.arg(nombre, campo));
        Pagina(m_forma, 2);
        Clic(m_forma->cmdNuevaRelacion);
        Escribe(nombre);
        Tecla(Qt::Key_Return);
        BuscaExterna(m_forma, u"Padre"_s);
        VeA(m_forma->TDBGridRelaciones, 0, ColCampoRelacion::Propia);
        for (const QString& texto : {campo, u"p"_s}) {
            Tecla(Qt::Key_F4);
            Tecla(Qt::Key_Escape);
            Escribe(texto);
            Tecla(Qt::Key_Tab);
        }
        VeA(m_forma->TDBGridRelaciones, 0, ColCampoRelacion::Propia);
        Pagina(m_forma, 0);
        relaciones[nombre] = campo;
    }
    void QuitaRelacion()
    {
        if (relaciones.isEmpty())
            return;
        const QStringList nombres = relaciones.keys();
        const QString nombre = UnoDe(nombres);
        Anota(u"no relation %1"_s.arg(nombre));
        Pagina(m_forma, 2);
        m_forma->cboRelaciones->setFocus();
        Tecla(Qt::Key_Home);
        for (int n = 0; n < m_forma->cboRelaciones->ListCount() && m_forma->cboRelaciones->Text() != nombre;
             ++n)
            Tecla(Qt::Key_Down);
        ASSERT_EQ(m_forma->cboRelaciones->Text(), nombre);
        Clic(m_forma->cmdEliminarRelacion);
        Pagina(m_forma, 0);
        relaciones.remove(nombre);
    }

    void Guarda()
    {
        Avisos();
        ASSERT_TRUE(Cierra(controls::Answer::Yes)) << Avisos().value(1).texto.toStdString();
        EXPECT_EQ(Avisos(), (QList<Aviso>{{u"¿Desea Guardar los cambios?"_s, 35, u"Quermo"_s}}));
        EXPECT_EQ(controls::LoadedForms().size(), 1) << "the browser alone";
        EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
        EXPECT_EQ(TransaccionesAbiertas(), 0);
        for (Columna& columna : columnas) {
            if (columna.nacida.isEmpty())
                columna.nacida = columna.nombre;
            if (!EsTexto(columna.tipo))
                columna.longitud = Tipos()[columna.tipo];
        }
        // Loading gives an index its columns in the order of the table, and the save builds it so.
        for (const QString& nombre : m_guardados)
            if (indices.contains(nombre))
                std::ranges::sort(indices[nombre], {}, [this](const QString& campo) { return Lugar(campo); });
        m_renombradas.clear();
        m_conClave = relaciones.values();
        m_guardados = indices.keys();
        EXPECT_EQ(DelServidor(), DelModelo());
    }
    QString DelModelo() const
    {
        QStringList lineas;
        for (const Columna& columna : columnas)
            lineas += u"%1:%2(%3)%4=%5"_s.arg(columna.nombre, columna.tipo)
                          .arg(columna.longitud)
                          .arg(columna.nulo ? 1 : 0)
                          .arg(columna.predeterminado);
        for (auto indice = indices.begin(); indice != indices.end(); ++indice)
            lineas += u"%1:%2"_s.arg(indice.key(), indice->join(u','));
        for (auto relacion = relaciones.begin(); relacion != relaciones.end(); ++relacion)
            lineas += u"%1:%2"_s.arg(relacion.key(), *relacion);
        lineas.sort();
        return lineas.join(u'\n');
    }
    static QString DelServidor()
    {
        QStringList lineas =
            Consulta(
                u"select c.name + ':' + t.name + '(' + cast(case when t.name = 'nvarchar' then c.length / 2 "
                u"else "
                u"c.length end as varchar) + ')' + cast(c.isnullable as varchar) + '=' + "
                u"isnull(replace(replace(m.text, '(', ''), ')', ''), '') from Taller..syscolumns c join "
                u"Taller..systypes t on t.xusertype = c.xusertype left join Taller..syscomments m on m.id = "
                u"c.cdefault where c.id = object_id('Taller..t')"_s)
                .split(u'|', Qt::SkipEmptyParts);
        const QStringList indices =
            Consulta(
                u"select name from Taller..sysindexes where id = object_id('Taller..t') and indid between 1 and 254"_s)
                .split(u'|', Qt::SkipEmptyParts);
        for (const QString& indice : indices)
            lineas +=
                indice + u':' +
                Consulta(
                    u"select c.name from Taller..sysindexes i join Taller..sysindexkeys k on k.id = i.id and "
                    u"k.indid = i.indid join Taller..syscolumns c on c.id = k.id and c.colid = k.colid where "
                    u"i.id = object_id('Taller..t') and i.name = '%1' order by k.keyno"_s.arg(indice))
                    .replace(u'|', u',');
        lineas +=
            Consulta(u"select o.name + ':' + c.name from Taller..sysreferences r join Taller..sysobjects o "
                     u"on o.id "
                     u"= r.constid join Taller..syscolumns c on c.id = r.fkeyid and c.colid = r.fkey1 where "
                     u"r.fkeyid = object_id('Taller..t')"_s)
                .split(u'|', Qt::SkipEmptyParts);
        lineas.sort();
        return lineas.join(u'\n');
    }

    qsizetype Lugar(const QString& campo) const
    {
        return std::ranges::find(columnas, campo, &Columna::nombre) - columnas.begin();
    }

    controls::DataGrid* rejilla() { return m_forma->TDBGridTabla; }

    QList<Columna> columnas;
    QMap<QString, QStringList> indices;
    QMap<QString, QString> relaciones;
    formularios::frmTabla* m_forma = nullptr;
    QString m_pasos;
    QStringList m_renombradas, m_guardados, m_conClave;
    int m_nombres = 0;
    std::mt19937 m_azar;
};

TEST_F(Azar, WhatIsDrawnIsWhatTheServerHas)
{
    const int semilla = EntornoONumero("QUERMO_RANDOM_SEED", 11);
    m_azar.seed(static_cast<unsigned>(semilla));
    Prepara(Es,
            {u"create table Padre (p int not null primary key)"_s, u"create table t (c0 int not null)"_s});
    columnas = {{u"c0"_s, u"int"_s, 4, false, {}, u"c0"_s}};
    using Edicion = void (Azar::*)();
    const Edicion ediciones[] = {&Azar::Añade,       &Azar::Añade,        &Azar::Renombra,
                                 &Azar::CambiaTipo,  &Azar::CambiaNulo,   &Azar::CambiaLongitud,
                                 &Azar::Quita,       &Azar::PonIndice,    &Azar::QuitaIndice,
                                 &Azar::PonRelacion, &Azar::QuitaRelacion};
    const int total = EntornoONumero("QUERMO_RANDOM_EDITS", 150);
    for (int hechas = 0; hechas < total && !HasFailure();) {
        m_forma = Diseña(u"t"_s);
        ASSERT_NE(m_forma, nullptr);
        m_pasos.clear();
        for (int n = 2 + Hasta(6); n > 0 && !HasFailure(); --n, ++hechas)
            (this->*ediciones[Hasta(static_cast<int>(std::size(ediciones)))])();
        Guarda();
        ASSERT_FALSE(HasFailure()) << "seed " << semilla
                                   << ", since the last save: " << m_pasos.toStdString();
    }
}

} // namespace pruebas
