#include "archivozip.h"

#include <QIODevice>

#include <algorithm>
#include <limits>

namespace {

constexpr quint32 kCabeceraLocal = 0x04034b50;
constexpr quint32 kDescriptor = 0x08074b50;
constexpr quint32 kCabeceraCentral = 0x02014b50;
constexpr quint32 kFinDirectorio = 0x06054b50;
constexpr quint16 kVersion = 20;         // 2.0: deflate
constexpr quint16 kConDescriptor = 0x0008; // sizes and checksum follow the data
constexpr quint16 kDeflate = 8;
// 1980-01-01 00:00, the format's first day: the archive carries no time of its own.
constexpr quint16 kHora = 0;
constexpr quint16 kDia = (0 << 9) | (1 << 5) | 1;
constexpr quint64 kMaximo = std::numeric_limits<quint32>::max();
constexpr int kBloque = 1 << 18;

void Agregar16(QByteArray &b, quint16 v)
{
    b.append(char(v & 0xff)).append(char(v >> 8));
}

void Agregar32(QByteArray &b, quint32 v)
{
    Agregar16(b, quint16(v & 0xffff));
    Agregar16(b, quint16(v >> 16));
}

} // namespace

ArchivoZip::ArchivoZip(QIODevice &salida)
    : m_salida(salida)
{
    // Raw deflate at its fastest level: a sheet's XML repeats itself so much that the
    // slower levels gain little room for much more time.
    m_zIniciado = deflateInit2(&m_z, Z_BEST_SPEED, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) == Z_OK;
    m_bien = m_zIniciado;
    m_comprimido.resize(kBloque);
}

ArchivoZip::~ArchivoZip()
{
    if (m_zIniciado)
        deflateEnd(&m_z);
}

bool ArchivoZip::volcar(const QByteArray &bytes)
{
    m_bien = m_bien && m_salida.write(bytes) == bytes.size();
    m_posicion += quint64(bytes.size());
    return m_bien;
}

bool ArchivoZip::Entrada(const char *nombre)
{
    if (m_abierta && !terminarEntrada())
        return false;
    if (!m_bien || m_posicion > kMaximo)
        return m_bien = false;
    Registro r;
    r.nombre = nombre;
    r.posicion = m_posicion;
    QByteArray cabecera;
    Agregar32(cabecera, kCabeceraLocal);
    Agregar16(cabecera, kVersion);
    Agregar16(cabecera, kConDescriptor);
    Agregar16(cabecera, kDeflate);
    Agregar16(cabecera, kHora);
    Agregar16(cabecera, kDia);
    Agregar32(cabecera, 0); // checksum and sizes: in the descriptor
    Agregar32(cabecera, 0);
    Agregar32(cabecera, 0);
    Agregar16(cabecera, quint16(r.nombre.size()));
    Agregar16(cabecera, 0);
    cabecera += r.nombre;
    m_registros.append(r);
    m_abierta = true;
    m_z.total_in = m_z.total_out = 0;
    return volcar(cabecera);
}

bool ArchivoZip::deflactar(const char *datos, qsizetype largo, int modo)
{
    m_z.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(datos));
    m_z.avail_in = uInt(largo);
    do {
        m_z.next_out = reinterpret_cast<Bytef *>(m_comprimido.data());
        m_z.avail_out = uInt(m_comprimido.size());
        const int resultado = deflate(&m_z, modo);
        if (resultado == Z_STREAM_ERROR)
            return m_bien = false;
        const qsizetype hechos = m_comprimido.size() - qsizetype(m_z.avail_out);
        if (hechos > 0 && !volcar(QByteArray::fromRawData(m_comprimido.constData(), hechos)))
            return false;
        if (modo == Z_FINISH && resultado == Z_STREAM_END)
            return true;
    } while (m_z.avail_out == 0 || m_z.avail_in > 0 || modo == Z_FINISH);
    return m_bien;
}

bool ArchivoZip::Escribir(const char *datos, qsizetype largo)
{
    if (!m_abierta || !m_bien)
        return m_bien = false;
    Registro &r = m_registros.last();
    // zlib counts in uInt: a long write goes in pieces.
    while (largo > 0) {
        const qsizetype parte = std::min<qsizetype>(largo, 1 << 30);
        r.crc = quint32(crc32(r.crc, reinterpret_cast<const Bytef *>(datos), uInt(parte)));
        r.original += quint64(parte);
        if (!deflactar(datos, parte, Z_NO_FLUSH))
            return false;
        datos += parte;
        largo -= parte;
    }
    return true;
}

bool ArchivoZip::terminarEntrada()
{
    m_abierta = false;
    if (!m_bien || !deflactar(nullptr, 0, Z_FINISH))
        return false;
    Registro &r = m_registros.last();
    r.comprimido = m_z.total_out;
    deflateReset(&m_z);
    if (r.original > kMaximo || r.comprimido > kMaximo)
        return m_bien = false;
    QByteArray descriptor;
    Agregar32(descriptor, kDescriptor);
    Agregar32(descriptor, r.crc);
    Agregar32(descriptor, quint32(r.comprimido));
    Agregar32(descriptor, quint32(r.original));
    return volcar(descriptor);
}

bool ArchivoZip::Terminar()
{
    if (m_abierta && !terminarEntrada())
        return false;
    const quint64 inicio = m_posicion;
    QByteArray directorio;
    for (const Registro &r : std::as_const(m_registros)) {
        Agregar32(directorio, kCabeceraCentral);
        Agregar16(directorio, kVersion);
        Agregar16(directorio, kVersion);
        Agregar16(directorio, kConDescriptor);
        Agregar16(directorio, kDeflate);
        Agregar16(directorio, kHora);
        Agregar16(directorio, kDia);
        Agregar32(directorio, r.crc);
        Agregar32(directorio, quint32(r.comprimido));
        Agregar32(directorio, quint32(r.original));
        Agregar16(directorio, quint16(r.nombre.size()));
        Agregar16(directorio, 0); // extra field
        Agregar16(directorio, 0); // comment
        Agregar16(directorio, 0); // disk
        Agregar16(directorio, 0); // internal attributes
        Agregar32(directorio, 0); // external attributes
        Agregar32(directorio, quint32(r.posicion));
        directorio += r.nombre;
    }
    if (!m_bien || inicio > kMaximo)
        return m_bien = false;
    const auto tamano = quint32(directorio.size());
    Agregar32(directorio, kFinDirectorio);
    Agregar16(directorio, 0);
    Agregar16(directorio, 0);
    Agregar16(directorio, quint16(m_registros.size()));
    Agregar16(directorio, quint16(m_registros.size()));
    Agregar32(directorio, tamano);
    Agregar32(directorio, quint32(inicio));
    Agregar16(directorio, 0);
    return volcar(directorio);
}
