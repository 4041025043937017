#pragma once

// Files the program reads or replaces by their name (the grid layout, the settings file)
// must be plain files: opening a FIFO to read blocks until someone writes to it, and
// replacing a file through a symbolic link writes over whatever the link points at.

#include <QFile>
#include <QString>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace archivoregular_detalle {

inline QString QueEs(mode_t modo)
{
    if (S_ISLNK(modo))
        return QStringLiteral("es un enlace simbólico");
    if (S_ISDIR(modo))
        return QStringLiteral("es una carpeta");
    if (S_ISFIFO(modo))
        return QStringLiteral("es una tubería con nombre");
    if (S_ISCHR(modo) || S_ISBLK(modo))
        return QStringLiteral("es un dispositivo");
    if (S_ISSOCK(modo))
        return QStringLiteral("es un socket");
    return QStringLiteral("es un archivo especial");
}

} // namespace archivoregular_detalle

// True when ruta names a regular file or nothing. A symbolic link (to whatever it points)
// and anything else that exists is refused, with what it is in *motivo. The link itself
// is looked at, not its target. A path that cannot be looked at for another reason
// (a folder without access) passes: opening it fails and reports that.
inline bool ArchivoRegularOAusente(const QString &ruta, QString *motivo)
{
    struct stat datos {};
    if (::lstat(QFile::encodeName(ruta).constData(), &datos) != 0 || S_ISREG(datos.st_mode))
        return true;
    if (motivo)
        *motivo = archivoregular_detalle::QueEs(datos.st_mode);
    return false;
}

// Opens ruta to read without following a link and without waiting on a FIFO, and refuses
// what is not a regular file once open: used after the check above, it also refuses a file
// swapped in between. False with the reason in *motivo.
inline bool AbrirArchivoRegular(QFile &archivo, const QString &ruta, QString *motivo)
{
    const int fd = ::open(QFile::encodeName(ruta).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        if (motivo)
            *motivo = errno == ELOOP ? archivoregular_detalle::QueEs(S_IFLNK) : QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    struct stat datos {};
    if (::fstat(fd, &datos) != 0 || !S_ISREG(datos.st_mode)) {
        if (motivo)
            *motivo = archivoregular_detalle::QueEs(datos.st_mode);
        ::close(fd);
        return false;
    }
    // A regular file never blocks; the flag only mattered for the open.
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    if (!archivo.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        if (motivo)
            *motivo = archivo.errorString();
        return false;
    }
    return true;
}
