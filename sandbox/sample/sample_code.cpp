// Views and procedures of the sample databases.
#include "sample/sample_scripts.h"

namespace practice {
namespace {

constexpr const char* codeBatches[] = {
    R"(CREATE VIEW ResumenPedidos AS
SELECT c.IdCliente, c.Nombre, COUNT(*) AS Pedidos
FROM Clientes c INNER JOIN Pedidos p ON p.IdCliente = c.IdCliente
GROUP BY c.IdCliente, c.Nombre)",

    R"(CREATE VIEW Precios
AS
-- Lo que se enseña a los clientes
SELECT p.Codigo, p.Producto, g.Categoria, p.Precio, p.Tamaño
FROM Productos p, Categorias g
WHERE g.IdCategoria = p.IdCategoria)",

    R"(CREATE VIEW LimitesDeRiesgo AS
SELECT IdCliente, Nombre, LimiteCredito FROM Clientes WHERE LimiteCredito > 0)",

    R"(CREATE PROCEDURE PedidosDeCliente @IdCliente int
AS
SELECT IdPedido, Fecha, FechaEnvio, Estado
FROM Pedidos
WHERE IdCliente = @IdCliente
ORDER BY Fecha)",

    R"(CREATE PROCEDURE SubePrecios @IdCategoria int, @Porcentaje decimal(5,2) = 3, @Cambiados int = NULL OUTPUT
AS
UPDATE Productos SET Precio = Precio * (1 + @Porcentaje / 100) WHERE IdCategoria = @IdCategoria
SELECT @Cambiados = @@ROWCOUNT)",

    R"(CREATE PROCEDURE ListaZonas AS
SELECT IdZona, Zona FROM Zonas ORDER BY Zona)",

    "EXEC sp_addrole 'Comerciales'",
    "EXEC sp_addrole 'Administración'",
    "EXEC sp_addlogin 'begona', 'Ventas-2001', 'Comercial'",
    "EXEC sp_addlogin 'inigo', 'Ventas-2001', 'Comercial'",
    "EXEC sp_addlogin 'consulta', 'Ventas-2001', 'Comercial'",
    "EXEC sp_grantdbaccess 'begona', 'begona'",
    "EXEC sp_grantdbaccess 'inigo', 'Iñigo'",
    "EXEC sp_grantdbaccess 'consulta', 'consulta'",
    "EXEC sp_addrolemember 'db_owner', 'begona'",
    "EXEC sp_addrolemember 'Comerciales', 'Iñigo'",
    "EXEC sp_addrolemember 'Administración', 'begona'",
    "EXEC sp_addrolemember 'db_datareader', 'consulta'",
    "GRANT SELECT, INSERT, UPDATE, DELETE ON Pedidos TO Comerciales",
    "GRANT SELECT, INSERT, UPDATE, DELETE ON LineasPedido TO Comerciales",
    "GRANT SELECT ON Precios TO public",
    "GRANT EXECUTE ON PedidosDeCliente TO Comerciales",
    "DENY SELECT ON Empleados TO consulta",
    "GRANT CREATE VIEW TO Iñigo",

    "CREATE DATABASE Archivo",
    "USE Archivo",
    R"(CREATE TABLE Expedientes (
    Año smallint NOT NULL,
    Numero int NOT NULL,
    Asunto nvarchar(80) NOT NULL,
    Cerrado bit NOT NULL CONSTRAINT DF_Expedientes_Cerrado DEFAULT (0),
    CONSTRAINT PK_Expedientes PRIMARY KEY CLUSTERED (Año, Numero)
))",
    R"(CREATE TABLE [Notas al margen] (
    IdNota int IDENTITY(1,1) NOT NULL CONSTRAINT [PK_Notas al margen] PRIMARY KEY CLUSTERED,
    Año smallint NOT NULL,
    Numero int NOT NULL,
    Nota ntext NULL,
    CONSTRAINT [FK_Notas_Expedientes] FOREIGN KEY (Año, Numero) REFERENCES Expedientes (Año, Numero)
))",
    R"(INSERT INTO Expedientes (Año, Numero, Asunto, Cerrado)
SELECT 1999, 1, N'Compra del almacén de Coslada', 1
UNION ALL SELECT 1999, 2, N'Reclamación de Dulces Señorío', 1
UNION ALL SELECT 2001, 1, N'Cambio al euro: señalización de precios', 0)",
    R"(INSERT INTO [Notas al margen] (Año, Numero, Nota)
SELECT 1999, 2, N'Se llegó a un acuerdo.' UNION ALL SELECT 2001, 1, N'Falta la pequeña tarifa de Maó.')",
    "EXEC sp_grantdbaccess 'begona', 'begona'",
    "USE master",
};

} // namespace

std::span<const char* const> sampleCode()
{
    return codeBatches;
}

} // namespace practice
