// Rows of the sample databases.
#include "sample/sample_scripts.h"

namespace practice {
namespace {

constexpr const char* dataBatches[] = {
    R"(INSERT INTO Zonas (IdZona, Zona)
SELECT 1, 'Centro' UNION ALL SELECT 2, 'Norte' UNION ALL SELECT 3, 'Levante'
UNION ALL SELECT 4, 'Andalucía' UNION ALL SELECT 5, 'Islas')",

    R"(INSERT INTO Categorias (Categoria, Descripcion)
SELECT N'Bebidas', N'Refrescos, cafés, tés, cervezas y licores'
UNION ALL SELECT N'Conservas', N'Pescados y verduras en lata, cañaíllas y piñones'
UNION ALL SELECT N'Lácteos', N'Leche, quesos y yogures'
UNION ALL SELECT N'Repostería', N'Postres, caramelos y panes dulces'
UNION ALL SELECT N'Panadería', NULL
UNION ALL SELECT N'Droguería', N'Productos de limpieza del hogar')",

    R"(INSERT INTO Proveedores (Nombre, Direccion, Poblacion, Telefono, Activo)
SELECT N'Conservas Muñoz, S.A.', N'Muelle Viejo, 14', N'A Coruña', '981 555 014', 1
UNION ALL SELECT N'Bodegas Peña Alta', N'Ctra. de Logroño, km 3', N'Haro', '941 555 102', 1
UNION ALL SELECT N'Quesería El Ordeño', N'Calle Mayor, 7', N'Almagro', '926 555 230', 1
UNION ALL SELECT N'Dulces Señorío', N'Plaza de España, 2', N'Estepa', '955 555 871', 1
UNION ALL SELECT N'Limpiezas Ibáñez', N'Pol. Ind. Cañada, nave 9', N'Paterna', '963 555 440', 0)",

    R"(INSERT INTO Almacenes (IdAlmacen, Almacen, Poblacion)
SELECT 1, N'Central', N'Coslada' UNION ALL SELECT 2, N'Cataluña', N'Sabadell' UNION ALL SELECT 3, N'Sur', N'Dos Hermanas')",

    R"(INSERT INTO Empleados (Nombre, Apellidos, IdJefe, FechaNacimiento, Salario)
SELECT N'Begoña', N'Núñez Peláez', NULL, '19580314', 3250.00)",
    R"(INSERT INTO Empleados (Nombre, Apellidos, IdJefe, FechaNacimiento, Salario)
SELECT N'Íñigo', N'Zabala Ruiz', 1, '19640722', 2480.50
UNION ALL SELECT N'María José', N'Gómez Cañete', 1, '19701105', 2310.00
UNION ALL SELECT N'Jesús', N'Ordóñez Vidal', 2, '19750930', 1675.25
UNION ALL SELECT N'Montserrat', N'Güell i Puig', 2, '19790117', 1590.00
UNION ALL SELECT N'Antonio', N'Peña Marín', 3, NULL, 1490.75)",

    // Digits, from whose combinations the rest is made.
    "CREATE TABLE #Cifras (N int NOT NULL)",
    R"(INSERT INTO #Cifras SELECT 0 UNION ALL SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3 UNION ALL SELECT 4
UNION ALL SELECT 5 UNION ALL SELECT 6 UNION ALL SELECT 7 UNION ALL SELECT 8 UNION ALL SELECT 9)",
    "CREATE TABLE #Numeros (N int NOT NULL PRIMARY KEY)",
    R"(INSERT INTO #Numeros
SELECT a.N + 10 * b.N + 100 * c.N + 1000 * d.N + 10000 * e.N
FROM #Cifras a, #Cifras b, #Cifras c, #Cifras d, #Cifras e WHERE e.N < 2)",

    R"(INSERT INTO Clientes (IdCliente, Nombre, Nif, Direccion, Poblacion, IdZona, FechaAlta, LimiteCredito)
SELECT N + 1,
    CASE N % 5 WHEN 0 THEN N'Ultramarinos Muñiz ' WHEN 1 THEN N'Supermercados Peñalver '
        WHEN 2 THEN N'Comercial Ibáñez ' WHEN 3 THEN N'Cafetería La Cigüeña ' ELSE N'Hostal Año Nuevo ' END
        + CAST(N + 1 AS varchar(5)),
    'B' + RIGHT('00000000' + CAST(28000000 + N * 37 AS varchar(8)), 8),
    N'Calle del Niño, ' + CAST(N % 90 + 1 AS varchar(3)),
    CASE N % 5 WHEN 0 THEN N'Madrid' WHEN 1 THEN N'Logroño' WHEN 2 THEN N'València'
        WHEN 3 THEN N'Cádiz' ELSE N'Maó' END,
    N % 5 + 1, DATEADD(day, N, '19990104'), CASE WHEN N % 7 = 0 THEN NULL ELSE N % 7 * 1500 END
FROM #Numeros WHERE N < 300)",

    R"(INSERT INTO Productos (IdProducto, Codigo, Producto, IdCategoria, IdProveedor, Precio, Iva, Tamaño)
SELECT N + 1, 'P' + RIGHT('0000000' + CAST(N + 1 AS varchar(7)), 7),
    CASE N % 6 WHEN 0 THEN N'Café molido ' WHEN 1 THEN N'Mejillones en escabeche ' WHEN 2 THEN N'Queso añejo '
        WHEN 3 THEN N'Turrón de Jijona ' WHEN 4 THEN N'Pan de payés ' ELSE N'Jabón de Castaña ' END
        + CAST(N + 1 AS varchar(5)),
    N % 6 + 1, N % 5 + 1, 0.75 + N % 40 * 1.15, CASE N % 3 WHEN 0 THEN 4 WHEN 1 THEN 7 ELSE 16 END,
    CASE N % 3 WHEN 0 THEN 'pequeño' WHEN 1 THEN 'mediano' ELSE NULL END
FROM #Numeros WHERE N < 120)",

    R"(INSERT INTO Existencias (IdAlmacen, IdProducto, Cantidad)
SELECT a.IdAlmacen, p.IdProducto, (a.IdAlmacen * 31 + p.IdProducto * 17) % 200 FROM Almacenes a, Productos p)",

    R"(INSERT INTO Pedidos (IdPedido, IdCliente, IdEmpleado, Fecha, FechaEnvio, Estado, Portes)
SELECT N + 1, N * 7 % 300 + 1, N % 6 + 1, DATEADD(hour, N, '20010102 09:00'),
    CASE WHEN N % 11 = 0 THEN NULL ELSE DATEADD(hour, N + 48, '20010102 09:00') END,
    CASE WHEN N % 11 = 0 THEN 'P' ELSE 'E' END, N % 9 * 1.5
FROM #Numeros)",

    R"(INSERT INTO LineasPedido (IdPedido, Linea, IdProducto, Cantidad, Precio, Descuento)
SELECT n.N + 1, c.N + 1, (n.N * 13 + c.N * 29) % 120 + 1, (n.N + c.N) % 12 + 1,
    0.75 + (n.N * 13 + c.N * 29) % 40 * 1.15, CASE WHEN n.N % 10 = 0 THEN 0.05 ELSE 0 END
FROM #Numeros n, #Cifras c WHERE c.N < 5)",
    "DROP TABLE #Numeros",
    "DROP TABLE #Cifras",

    // Keys and relations come after the rows, as they would after a bulk load.
    "ALTER TABLE LineasPedido ADD CONSTRAINT PK_LineasPedido PRIMARY KEY CLUSTERED (IdPedido, Linea)",
    "CREATE INDEX IX_LineasPedido_Producto ON LineasPedido (IdProducto)",
    R"(ALTER TABLE LineasPedido ADD
    CONSTRAINT DF_LineasPedido_Cantidad DEFAULT (1) FOR Cantidad,
    CONSTRAINT DF_LineasPedido_Descuento DEFAULT (0) FOR Descuento,
    CONSTRAINT CK_LineasPedido_Cantidad CHECK (Cantidad > 0),
    CONSTRAINT CK_LineasPedido_Descuento CHECK (Descuento BETWEEN 0 AND 1))",
    R"(ALTER TABLE Pedidos ADD
    CONSTRAINT FK_Pedidos_Clientes FOREIGN KEY (IdCliente) REFERENCES Clientes (IdCliente),
    CONSTRAINT FK_Pedidos_Empleados FOREIGN KEY (IdEmpleado) REFERENCES Empleados (IdEmpleado),
    CONSTRAINT CK_Pedidos_Estado CHECK (Estado IN ('P', 'E', 'A')))",
    R"(ALTER TABLE LineasPedido ADD
    CONSTRAINT FK_LineasPedido_Pedidos FOREIGN KEY (IdPedido) REFERENCES Pedidos (IdPedido) ON DELETE CASCADE,
    CONSTRAINT FK_LineasPedido_Productos FOREIGN KEY (IdProducto) REFERENCES Productos (IdProducto))",
    "CREATE INDEX IX_Pedidos_Cliente ON Pedidos (IdCliente, Fecha)",
};

} // namespace

std::span<const char* const> sampleData()
{
    return dataBatches;
}

} // namespace practice
