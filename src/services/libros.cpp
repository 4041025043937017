#include "libros.h"

#include "store/fallo.h"

Libros::Libros(Conexion &conexion)
    : m_conexion(conexion)
{
}

QList<Libros::Libro> Libros::Listar()
{
    QList<Libro> libros;
    auto rs = m_conexion.Abrir(QStringLiteral("Select LibCodigo, LibNombre, LibDelSistema From genLibros Order By LibNombre"));
    for (; !rs->Fin(); rs->MoverSiguiente())
        libros.append({qint16(rs->Entero(QStringLiteral("LibCodigo"))), rs->Texto(QStringLiteral("LibNombre")).trimmed(),
                       rs->Entero(QStringLiteral("LibDelSistema")) != 0});
    return libros;
}

// Whether a book may be changed: it exists and it is one of the user's.
Libros::Resultado Libros::modificable(qint16 codigo)
{
    for (const Libro &l : Listar())
        if (l.codigo == codigo)
            return l.delSistema ? Resultado::DelSistema : Resultado::Bien;
    return Resultado::NoExiste;
}

Libros::Resultado Libros::validarNombre(const QString &nombre, qint16 salvo)
{
    const QString n = nombre.trimmed();
    if (n.isEmpty())
        return Resultado::NombreVacio;
    for (const Libro &l : Listar())
        if (l.codigo != salvo && l.nombre.compare(n, Qt::CaseInsensitive) == 0)
            return Resultado::NombreRepetido;
    return Resultado::Bien;
}

Libros::Resultado Libros::Agregar(const QString &nombre, qint16 &codigo)
{
    try {
        const Resultado v = validarNombre(nombre, -1);
        if (v != Resultado::Bien)
            return v;
        Transaccion tx(m_conexion);
        auto rs = m_conexion.Abrir(QStringLiteral("Select Max(LibCodigo) From genLibros"));
        codigo = qint16(QVariant(rs->Campo(0)).toInt() + 1);
        rs->Cerrar();
        m_conexion.Ejecutar(QStringLiteral("Insert Into genLibros (LibCodigo, LibNombre, LibDelSistema) Values (?, ?, 0)"),
                            {codigo, nombre.trimmed()});
        tx.Confirmar();
        return Resultado::Bien;
    } catch (const ErrorBaseDatos &e) {
        m_error = DetalleError(e.numero(), e.descripcion());
        return Resultado::ErrorBase;
    }
}

Libros::Resultado Libros::Renombrar(qint16 codigo, const QString &nombre)
{
    try {
        if (const Resultado r = modificable(codigo); r != Resultado::Bien)
            return r;
        const Resultado v = validarNombre(nombre, codigo);
        if (v != Resultado::Bien)
            return v;
        m_conexion.Ejecutar(QStringLiteral("Update genLibros Set LibNombre = ? Where LibCodigo = ?"), {nombre.trimmed(), codigo});
        return Resultado::Bien;
    } catch (const ErrorBaseDatos &e) {
        m_error = DetalleError(e.numero(), e.descripcion());
        return Resultado::ErrorBase;
    }
}

// Entries in the trash still name their book: it stays while any entry does.
Libros::Resultado Libros::eliminable(qint16 codigo)
{
    if (const Resultado r = modificable(codigo); r != Resultado::Bien)
        return r;
    auto rs = m_conexion.Abrir(QStringLiteral("Select Count(*) From cceAsientos Where AsiTipo = ?"), {codigo});
    const bool enUso = QVariant(rs->Campo(0)).toInt() > 0;
    rs->Cerrar();
    return enUso ? Resultado::EnUso : Resultado::Bien;
}

Libros::Resultado Libros::PuedeEliminar(qint16 codigo)
{
    try {
        return eliminable(codigo);
    } catch (const ErrorBaseDatos &e) {
        m_error = DetalleError(e.numero(), e.descripcion());
        return Resultado::ErrorBase;
    }
}

Libros::Resultado Libros::Eliminar(qint16 codigo)
{
    try {
        Transaccion tx(m_conexion);
        if (const Resultado r = eliminable(codigo); r != Resultado::Bien)
            return r;
        m_conexion.Ejecutar(QStringLiteral("Delete From genLibros Where LibCodigo = ?"), {codigo});
        tx.Confirmar();
        return Resultado::Bien;
    } catch (const ErrorBaseDatos &e) {
        m_error = DetalleError(e.numero(), e.descripcion());
        return Resultado::ErrorBase;
    }
}

QString Libros::Explicacion(Resultado r)
{
    switch (r) {
    case Resultado::DelSistema:
        return QStringLiteral("Es un libro del sistema: no se puede cambiar.");
    case Resultado::EnUso:
        return QStringLiteral("Hay asientos en este libro: no se puede eliminar.");
    case Resultado::NombreVacio:
        return QStringLiteral("Escriba el nombre del libro.");
    case Resultado::NombreRepetido:
        return QStringLiteral("Ya existe un libro con ese nombre.");
    case Resultado::NoExiste:
        return QStringLiteral("El libro ya no existe.");
    case Resultado::ErrorBase:
        return QStringLiteral("No se pudo guardar el cambio.");
    case Resultado::Bien:
        break;
    }
    return {};
}
