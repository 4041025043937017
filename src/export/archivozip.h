#pragma once

#include <QByteArray>
#include <QList>

#include <zlib.h>

class QIODevice;

// A zip archive written as it goes: each entry's bytes are deflated into the device as they
// come, and its checksum and sizes follow it in a data descriptor, so nothing of an entry is
// held whole. Entries and the archive stay under 4 GiB (no zip64): a larger one fails.
class ArchivoZip
{
public:
    explicit ArchivoZip(QIODevice &salida);
    ~ArchivoZip();
    ArchivoZip(const ArchivoZip &) = delete;
    ArchivoZip &operator=(const ArchivoZip &) = delete;

    // Starts an entry (an ASCII path); the one before, if any, is ended first.
    bool Entrada(const char *nombre);
    bool Escribir(const char *datos, qsizetype largo);
    bool Escribir(const QByteArray &datos) { return Escribir(datos.constData(), datos.size()); }
    // Ends the last entry and writes the directory. False when anything could not be written.
    bool Terminar();
    // False when the compressor could not be made: nothing can be written.
    bool Listo() const { return m_zIniciado; }

private:
    struct Registro
    {
        QByteArray nombre;
        quint32 crc = 0;
        quint64 comprimido = 0;
        quint64 original = 0;
        quint64 posicion = 0;
    };

    bool terminarEntrada();
    bool deflactar(const char *datos, qsizetype largo, int modo);
    bool volcar(const QByteArray &bytes);

    QIODevice &m_salida;
    z_stream m_z{};
    bool m_zIniciado = false;
    bool m_abierta = false;
    bool m_bien = true;
    quint64 m_posicion = 0;
    QList<Registro> m_registros;
    QByteArray m_comprimido;
};
