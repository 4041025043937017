// The layout file: the whole grid, cells, data and formats, in a versioned format of our
// own. A header with a magic number, the version, the payload's length and its SHA-1 lets
// a truncated, damaged or foreign file be refused before any of it is read.
#include "grilla.h"

#include "store/archivoregular.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QFile>
#include <QSaveFile>

#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace {

constexpr quint32 kMagia = 0x41534752; // "ASGR"
constexpr quint16 kVersion = 1;
constexpr int kMaxColumnas = 64;
constexpr qint64 kMaxFilas = 5'000'000;

void fallar(QString *error, const QString &texto)
{
    if (error)
        *error = texto;
}

QString noEsComun(const QString &ruta, const QString &queEs)
{
    return QStringLiteral("el archivo de diseño no es un archivo común: %1 (%2)").arg(ruta, queEs);
}

} // namespace

class FormatoDisenoGrilla
{
public:
    static QByteArray Escribir(const Grilla &g)
    {
        QByteArray datos;
        QDataStream s(&datos, QIODevice::WriteOnly);
        s.setVersion(QDataStream::Qt_6_0);
        s << qint32(g.m_columnas) << qint32(g.m_filasFijas);
        for (int c = 0; c < g.m_columnas; ++c)
            s << qint32(g.m_anchos[size_t(c)]) << bool(g.m_ocultas[size_t(c)])
              << qint32(g.m_alineaciones[size_t(c)].toInt()) << g.m_formatos[size_t(c)];
        s << qint32(g.m_mascaras.size());
        for (const QString &m : g.m_mascaras)
            s << m;
        s << qint64(g.m_filas.size());
        for (int fila = 0; fila < g.Filas(); ++fila)
            EscribirFila(s, g, fila);
        return datos;
    }

    static void EscribirFila(QDataStream &s, const Grilla &g, int fila)
    {
        const FilaGrilla &f = g.Fila(fila);
        s << g.Imagen(fila) << quint32(f.fondo) << quint32(f.colorBorde) << qint32(f.alto) << f.oculta;
        for (int columna = 0; columna < g.Columnas(); ++columna) {
            const CeldaGrilla &c = g.celda(fila, columna);
            s << g.TextoGuardado(fila, columna) << g.Dato(fila, columna) << c.valor.aDouble() << c.mascara
              << quint32(g.ColorTexto(fila, columna)) << c.alineacion;
        }
    }

    // The fewest bytes a row of this grid takes in the file: an empty row's.
    static qint64 BytesMinimosFila(const Grilla &g)
    {
        QByteArray datos;
        QDataStream s(&datos, QIODevice::WriteOnly);
        s.setVersion(QDataStream::Qt_6_0);
        Grilla vacia(g.Columnas(), 0);
        vacia.InsertarFila(0);
        EscribirFila(s, vacia, 0);
        return datos.size();
    }

    static bool Leer(Grilla &g, const QByteArray &datos, QString *error)
    {
        QDataStream s(datos);
        s.setVersion(QDataStream::Qt_6_0);
        qint32 columnas = 0, fijas = 0;
        s >> columnas >> fijas;
        if (columnas != g.m_columnas || fijas != g.m_filasFijas) {
            fallar(error, QStringLiteral("el diseño es de otra grilla"));
            return false;
        }
        Grilla nueva(columnas, fijas);
        for (int c = 0; c < columnas; ++c) {
            qint32 ancho = 0, alineacion = 0;
            bool oculta = false;
            s >> ancho >> oculta >> alineacion >> nueva.m_formatos[size_t(c)];
            nueva.m_anchos[size_t(c)] = std::max(0, ancho);
            nueva.m_ocultas[size_t(c)] = oculta;
            nueva.m_alineaciones[size_t(c)] = Qt::Alignment::fromInt(alineacion);
        }
        qint32 mascaras = 0;
        s >> mascaras;
        if (mascaras < 0 || mascaras > 10000)
            return false;
        nueva.m_mascaras.resize(size_t(mascaras));
        for (QString &m : nueva.m_mascaras)
            s >> m;
        qint64 filas = 0;
        s >> filas;
        if (s.status() != QDataStream::Ok || filas < fijas || filas > kMaxFilas)
            return false;
        // The rows are made before they are read: a count that the bytes left cannot hold
        // (a damaged or made-up file) is refused before gigabytes are taken for it.
        const qint64 resto = datos.size() - s.device()->pos();
        if (filas > resto / BytesMinimosFila(nueva)) {
            fallar(error, QStringLiteral("el archivo de diseño está dañado: anuncia %1 filas en %2 bytes").arg(filas).arg(resto));
            return false;
        }
        nueva.m_filas.assign(size_t(filas), FilaGrilla());
        nueva.m_celdas.assign(size_t(filas) * size_t(columnas), CeldaGrilla());
        for (int fila = 0; fila < int(filas); ++fila) {
            FilaGrilla &f = nueva.m_filas[size_t(fila)];
            quint32 fondo = 0, borde = 0;
            qint32 alto = 0;
            QString imagen;
            s >> imagen >> fondo >> borde >> alto >> f.oculta;
            nueva.FijarImagen(fila, imagen);
            f.fondo = fondo;
            f.colorBorde = borde;
            f.alto = alto;
            for (int columna = 0; columna < columnas; ++columna) {
                CeldaGrilla &c = nueva.celdaEditable(fila, columna);
                QString texto;
                QVariant dato;
                quint32 color = 0;
                double valor = 0; // the file keeps numbers as doubles
                s >> texto >> dato >> valor >> c.mascara >> color >> c.alineacion;
                nueva.fijarIndiceTexto(c, texto.isEmpty() ? 0 : nueva.indiceTexto(texto));
                nueva.guardarDato(c, dato);
                c.valor = Importe::DesdeDouble(valor);
                nueva.FijarColorTexto(fila, columna, color);
                if (c.mascara < Grilla::kMascaraColumna || c.mascara >= mascaras)
                    return false;
            }
            if (s.status() != QDataStream::Ok)
                return false;
        }
        if (s.status() != QDataStream::Ok || !s.atEnd())
            return false;

        ObservadorGrilla *observador = g.m_observador;
        const bool redibujar = g.m_redibujar;
        nueva.m_observador = observador;
        nueva.m_redibujar = redibujar;
        g = std::move(nueva);
        if (g.avisar())
            observador->Reinicio();
        else
            g.m_sucia = true;
        return true;
    }
};

bool Grilla::Guardar(const QString &ruta, QString *error) const
{
    QString motivo;
    if (!ArchivoRegularOAusente(ruta, &motivo)) {
        fallar(error, noEsComun(ruta, motivo));
        return false;
    }
    const QByteArray datos = FormatoDisenoGrilla::Escribir(*this);
    QSaveFile archivo(ruta);
    if (!archivo.open(QIODevice::WriteOnly)) {
        fallar(error, archivo.errorString());
        return false;
    }
    // The save file resolves a link when it opens and would replace the link's target: a
    // link put there between the check and the open is refused before anything is written.
    if (!ArchivoRegularOAusente(ruta, &motivo)) {
        archivo.cancelWriting();
        fallar(error, noEsComun(ruta, motivo));
        return false;
    }
    errno = 0;
    QDataStream s(&archivo);
    s.setVersion(QDataStream::Qt_6_0);
    s << kMagia << kVersion << qint64(datos.size());
    s.writeRawData(QCryptographicHash::hash(datos, QCryptographicHash::Sha1).constData(), 20);
    s.writeRawData(datos.constData(), int(datos.size()));
    // What is still in the write buffer goes out here: commit() flushes it too but does not
    // report a failure, and would put the truncated file (a full disk) in place of the last
    // good one. fsync makes the disk report what it only finds when the data goes out.
    const bool escrito = s.status() == QDataStream::Ok && archivo.flush() && archivo.error() == QFileDevice::NoError
                      && ::fsync(archivo.handle()) == 0;
    if (!escrito) {
        // A short write leaves the reason (EFBIG, ENOSPC) only in errno: the file's own
        // error, if any, is then "Unknown error".
        const int numero = errno;
        if (numero != 0)
            motivo = QString::fromLocal8Bit(std::strerror(numero));
        else if (archivo.error() != QFileDevice::NoError)
            motivo = archivo.errorString();
        else
            motivo = QStringLiteral("no se escribió completo");
        archivo.cancelWriting();
        fallar(error, QStringLiteral("no se pudo escribir el archivo de diseño %1: %2").arg(ruta, motivo));
        return false;
    }
    if (!archivo.commit()) {
        fallar(error, archivo.errorString());
        return false;
    }
    return true;
}

bool Grilla::Cargar(const QString &ruta, QString *error)
{
    QString motivo;
    if (!ArchivoRegularOAusente(ruta, &motivo)) {
        fallar(error, noEsComun(ruta, motivo));
        return false;
    }
    QFile archivo;
    if (!AbrirArchivoRegular(archivo, ruta, &motivo)) {
        fallar(error, QStringLiteral("no se pudo abrir el archivo de diseño %1: %2").arg(ruta, motivo));
        return false;
    }
    QDataStream s(&archivo);
    s.setVersion(QDataStream::Qt_6_0);
    quint32 magia = 0;
    quint16 version = 0;
    qint64 largo = -1;
    s >> magia >> version >> largo;
    if (s.status() != QDataStream::Ok || magia != kMagia) {
        fallar(error, QStringLiteral("no es un archivo de diseño de la grilla"));
        return false;
    }
    if (version != kVersion) {
        fallar(error, QStringLiteral("versión de diseño desconocida: %1").arg(version));
        return false;
    }
    QByteArray suma(20, '\0');
    if (largo < 0 || largo != archivo.size() - archivo.pos() - 20 || s.readRawData(suma.data(), 20) != 20) {
        fallar(error, QStringLiteral("el archivo de diseño está incompleto"));
        return false;
    }
    const QByteArray datos = archivo.read(largo);
    if (datos.size() != largo || QCryptographicHash::hash(datos, QCryptographicHash::Sha1) != suma) {
        fallar(error, QStringLiteral("el archivo de diseño está dañado"));
        return false;
    }
    if (!FormatoDisenoGrilla::Leer(*this, datos, error)) {
        if (error && error->isEmpty())
            *error = QStringLiteral("el archivo de diseño está dañado");
        return false;
    }
    return true;
}
