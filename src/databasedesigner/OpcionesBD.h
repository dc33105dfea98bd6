// The options of a database: the recovery model and eight switches.
#pragma once

#include <QString>

#include <array>
#include <optional>

/// In the order in which they are read and written.
enum class Opcion
{
    NuloANSI,
    CrearEstadisticas,
    ActualizarEstadisticas,
    Cerrar,
    IdentificadoresComillas,
    PaginaRasgada,
    Reducir,
    DesencadenadoresRecursivos
};
inline constexpr std::size_t NumeroOpciones = 8;

/// Places of the recovery models.
namespace ModeloRecuperacion {
inline constexpr int Completo = 0;
inline constexpr int RegistroMasivo = 1;
inline constexpr int Sencillo = 2;
} // namespace ModeloRecuperacion

/// What could not be read has no value.
struct OpcionesLeidas
{
    std::optional<int> Modelo;
    std::array<std::optional<bool>, NumeroOpciones> Marcas;
};

struct OpcionesBD
{
    int Modelo = -1; ///< -1 for none
    std::array<bool, NumeroOpciones> Marcas{};
};

[[nodiscard]] OpcionesLeidas CapturaOpciones_SQL(const QString& nombre);

/// Writes all options; ends with the first that is refused.
void GrabaOpciones(const QString& nombre, const OpcionesBD& opciones);
