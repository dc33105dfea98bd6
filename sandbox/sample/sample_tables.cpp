// Tables of the sample databases.
#include "sample/sample_scripts.h"

namespace practice {
namespace {

constexpr const char* tableBatches[] = {
    "CREATE DATABASE Comercial",
    "ALTER DATABASE Comercial MODIFY FILE (NAME = Comercial, SIZE = 24MB)",
    "ALTER DATABASE Comercial MODIFY FILE (NAME = Comercial_log, SIZE = 4MB)",
    "ALTER DATABASE Comercial ADD FILEGROUP HISTORICO",
    "ALTER DATABASE Comercial SET RECOVERY SIMPLE",
    "USE Comercial",

    R"(CREATE TABLE Zonas (
    IdZona smallint NOT NULL CONSTRAINT PK_Zonas PRIMARY KEY CLUSTERED,
    Zona varchar(30) NOT NULL CONSTRAINT UQ_Zonas_Zona UNIQUE
))",

    R"(CREATE TABLE Categorias (
    IdCategoria int IDENTITY(1,1) NOT NULL CONSTRAINT PK_Categorias PRIMARY KEY CLUSTERED,
    Categoria nvarchar(40) NOT NULL,
    Descripcion ntext NULL
))",

    R"(CREATE TABLE Proveedores (
    IdProveedor int IDENTITY(1,1) NOT NULL CONSTRAINT PK_Proveedores PRIMARY KEY CLUSTERED,
    Nombre nvarchar(50) NOT NULL,
    Direccion nvarchar(60) NULL,
    Poblacion nvarchar(30) NULL,
    Telefono varchar(15) NULL,
    Activo bit NOT NULL CONSTRAINT DF_Proveedores_Activo DEFAULT (1)
))",

    R"(CREATE TABLE Clientes (
    IdCliente int NOT NULL CONSTRAINT PK_Clientes PRIMARY KEY CLUSTERED,
    Nombre nvarchar(50) NOT NULL,
    Nif char(9) NULL,
    Direccion nvarchar(60) NULL,
    Poblacion nvarchar(30) NOT NULL CONSTRAINT DF_Clientes_Poblacion DEFAULT ('Madrid'),
    IdZona smallint NOT NULL CONSTRAINT FK_Clientes_Zonas REFERENCES Zonas (IdZona),
    FechaAlta smalldatetime NOT NULL CONSTRAINT DF_Clientes_FechaAlta DEFAULT (getdate()),
    LimiteCredito money NULL CONSTRAINT CK_Clientes_LimiteCredito CHECK (LimiteCredito >= 0),
    Notas text NULL
))",
    "CREATE INDEX IX_Clientes_Nombre ON Clientes (Nombre)",
    "CREATE UNIQUE INDEX IX_Clientes_Nif ON Clientes (Nif) WITH FILLFACTOR = 80",

    R"(CREATE TABLE Empleados (
    IdEmpleado int IDENTITY(1,1) NOT NULL CONSTRAINT PK_Empleados PRIMARY KEY CLUSTERED,
    Nombre nvarchar(25) NOT NULL,
    Apellidos nvarchar(40) NOT NULL,
    IdJefe int NULL CONSTRAINT FK_Empleados_Jefe REFERENCES Empleados (IdEmpleado),
    FechaNacimiento datetime NULL,
    Salario decimal(9,2) NOT NULL CONSTRAINT CK_Empleados_Salario CHECK (Salario > 0),
    Foto image NULL,
    Clave uniqueidentifier NOT NULL ROWGUIDCOL CONSTRAINT DF_Empleados_Clave DEFAULT (newid())
))",

    R"(CREATE TABLE Productos (
    IdProducto int NOT NULL CONSTRAINT PK_Productos PRIMARY KEY CLUSTERED,
    Codigo char(8) NOT NULL CONSTRAINT UQ_Productos_Codigo UNIQUE,
    Producto nvarchar(50) NOT NULL,
    IdCategoria int NOT NULL CONSTRAINT FK_Productos_Categorias REFERENCES Categorias (IdCategoria),
    IdProveedor int NOT NULL CONSTRAINT FK_Productos_Proveedores REFERENCES Proveedores (IdProveedor),
    Precio money NOT NULL CONSTRAINT DF_Productos_Precio DEFAULT (0),
    Iva tinyint NOT NULL CONSTRAINT DF_Productos_Iva DEFAULT (16),
    Tamaño varchar(12) NULL,
    Version timestamp NOT NULL,
    CONSTRAINT CK_Productos_Precio CHECK (Precio >= 0)
))",
    "CREATE INDEX IX_Productos_Categoria ON Productos (IdCategoria, Producto DESC)",

    R"(CREATE TABLE Almacenes (
    IdAlmacen tinyint NOT NULL CONSTRAINT PK_Almacenes PRIMARY KEY CLUSTERED,
    Almacen nvarchar(30) NOT NULL,
    Poblacion nvarchar(30) NULL
))",

    R"(CREATE TABLE Existencias (
    IdAlmacen tinyint NOT NULL CONSTRAINT FK_Existencias_Almacenes REFERENCES Almacenes (IdAlmacen) ON DELETE CASCADE,
    IdProducto int NOT NULL CONSTRAINT FK_Existencias_Productos REFERENCES Productos (IdProducto),
    Cantidad int NOT NULL CONSTRAINT DF_Existencias_Cantidad DEFAULT (0),
    CONSTRAINT PK_Existencias PRIMARY KEY CLUSTERED (IdAlmacen, IdProducto)
))",

    R"(CREATE TABLE Pedidos (
    IdPedido int NOT NULL CONSTRAINT PK_Pedidos PRIMARY KEY CLUSTERED,
    IdCliente int NOT NULL,
    IdEmpleado int NOT NULL,
    Fecha datetime NOT NULL CONSTRAINT DF_Pedidos_Fecha DEFAULT (getdate()),
    FechaEnvio datetime NULL,
    Estado char(1) NOT NULL CONSTRAINT DF_Pedidos_Estado DEFAULT ('P'),
    Portes smallmoney NULL
))",

    R"(CREATE TABLE LineasPedido (
    IdPedido int NOT NULL,
    Linea smallint NOT NULL,
    IdProducto int NOT NULL,
    Cantidad int NOT NULL,
    Precio money NOT NULL,
    Descuento real NOT NULL,
    Importe AS Cantidad * Precio
))",
};

} // namespace

std::span<const char* const> sampleTables()
{
    return tableBatches;
}

} // namespace practice
