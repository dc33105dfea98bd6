// Reads a database's files, filegroups and facts from the catalog.
#pragma once

#include "databasedesigner/DatosBD.h"

#include <optional>

/// Empties the stores for a database that is yet to be made.
void IniciaBDNueva(DatosBD& datos);

/// Fills ArchivosBD and TransaccionesBD. Groups are looked up behind PrefijoBD as it stands.
void CargaFicheros(DatosBD& datos);

/// Reads the filegroups of the database that the form was opened on into GruposFicheros and GruposBD.
void CapturaGrupos_SQL(DatosBD& datos);

/// Whether GruposBD has a group of that name, in any case.
[[nodiscard]] bool ExisteGrupoFichero(const DatosBD& datos, const QString& nombre);

/// Size of a file in whole MB by the catalog behind PrefijoBD; 0 for one that it has not.
[[nodiscard]] double TamañoExistente(const QString& archivo);

/// The facts of the general tab; what could not be read, or is not there, stays without a value.
struct FichaBD
{
    std::optional<QString> Estado;
    std::optional<QString> Propietario;
    std::optional<QString> FechaCreacion; ///< day, month, year, hour and minute
    std::optional<QString> Tamaño;        ///< in MB, with the unit
    std::optional<QString> Usuarios;
    QString Intercalacion;
};

[[nodiscard]] FichaBD CapturaFicha_SQL(const QString& nombre);
