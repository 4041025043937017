#include "libros.h"

namespace {

// A refusal by the rules (0 when there is none), or the failure of the database.
std::optional<Fallo> Rechazo(int numeroTexto)
{
    if (numeroTexto == 0)
        return std::nullopt;
    return Fallo{numeroTexto, QString(), false};
}

std::optional<Fallo> Decidido(const Resultado<int> &r)
{
    return r ? Rechazo(*r) : std::optional<Fallo>(r.fallo());
}

} // namespace

Libros::Libros(Conexion &conexion)
    : m_conexion(conexion)
{
}

QList<Libros::Libro> Libros::listar()
{
    QList<Libro> libros;
    auto rs = m_conexion.Abrir(QStringLiteral("Select LibCodigo, LibNombre, LibDelSistema From genLibros Order By LibNombre"));
    for (; !rs->Fin(); rs->MoverSiguiente())
        libros.append({qint16(rs->Entero(QStringLiteral("LibCodigo"))), rs->Texto(QStringLiteral("LibNombre")).trimmed(),
                       rs->Entero(QStringLiteral("LibDelSistema")) != 0});
    return libros;
}

Resultado<QList<Libros::Libro>> Libros::Listar()
{
    return Intentar([&] { return listar(); });
}

// Whether a book may be changed: it exists and it is one of the user's.
int Libros::modificable(qint16 codigo)
{
    for (const Libro &l : listar())
        if (l.codigo == codigo)
            return l.delSistema ? kDelSistema : 0;
    return kNoExiste;
}

int Libros::validarNombre(const QString &nombre, qint16 salvo)
{
    const QString n = nombre.trimmed();
    if (n.isEmpty())
        return kNombreVacio;
    for (const Libro &l : listar())
        if (l.codigo != salvo && l.nombre.compare(n, Qt::CaseInsensitive) == 0)
            return kNombreRepetido;
    return 0;
}

Resultado<qint16> Libros::Agregar(const QString &nombre)
{
    qint16 codigo = 0;
    const auto fallo = Decidido(Intentar(
        [&] {
            if (const int v = validarNombre(nombre, -1))
                return v;
            Transaccion tx(m_conexion);
            auto rs = m_conexion.Abrir(QStringLiteral("Select Max(LibCodigo) From genLibros"));
            codigo = qint16(QVariant(rs->Campo(0)).toInt() + 1);
            rs->Cerrar();
            m_conexion.Ejecutar(QStringLiteral("Insert Into genLibros (LibCodigo, LibNombre, LibDelSistema) Values (?, ?, 0)"),
                                {codigo, nombre.trimmed()});
            tx.Confirmar();
            return 0;
        },
        kNoSeGuardo));
    if (fallo)
        return *fallo;
    return codigo;
}

std::optional<Fallo> Libros::Renombrar(qint16 codigo, const QString &nombre)
{
    return Decidido(Intentar(
        [&] {
            if (const int r = modificable(codigo))
                return r;
            if (const int v = validarNombre(nombre, codigo))
                return v;
            m_conexion.Ejecutar(QStringLiteral("Update genLibros Set LibNombre = ? Where LibCodigo = ?"), {nombre.trimmed(), codigo});
            return 0;
        },
        kNoSeGuardo));
}

// Entries in the trash still name their book: it stays while any entry does.
int Libros::eliminable(qint16 codigo)
{
    if (const int r = modificable(codigo))
        return r;
    auto rs = m_conexion.Abrir(QStringLiteral("Select Count(*) From cceAsientos Where AsiTipo = ?"), {codigo});
    const bool enUso = QVariant(rs->Campo(0)).toInt() > 0;
    rs->Cerrar();
    return enUso ? kEnUso : 0;
}

std::optional<Fallo> Libros::PuedeEliminar(qint16 codigo)
{
    return Decidido(Intentar([&] { return eliminable(codigo); }, kNoSeGuardo));
}

std::optional<Fallo> Libros::Eliminar(qint16 codigo)
{
    return Decidido(Intentar(
        [&] {
            Transaccion tx(m_conexion);
            if (const int r = eliminable(codigo))
                return r;
            m_conexion.Ejecutar(QStringLiteral("Delete From genLibros Where LibCodigo = ?"), {codigo});
            tx.Confirmar();
            return 0;
        },
        kNoSeGuardo));
}
