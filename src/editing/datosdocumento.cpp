#include "datosdocumento.h"

#include "services/serviciomensajes.h"

#include <QStringList>

LibrosSistema DatosDocumento::librosSistema() const
{
    const ParametrosSistema &p = parametros();
    return {p.libroResumen, p.libroApertura, p.libroCierre, p.libroADC, p.libroPrimeraApertura};
}

bool DatosDocumento::TienePermiso(QChar letra) const
{
    return ::TienePermiso(letras, letra);
}

void DatosDocumento::Error(int numero, const QString &detalle) const
{
    mensajes->MostrarError(texto(numero), QString(), detalle);
}

void DatosDocumento::Advertir(int numero) const
{
    mensajes->Advertir(texto(numero));
}

void DatosDocumento::Informar(int numero) const
{
    mensajes->Informar(texto(numero));
}

bool DatosDocumento::Preguntar(int numero) const
{
    return mensajes->Preguntar(texto(numero), ServicioMensajes::Botones::SiNo) == ServicioMensajes::Respuesta::Si;
}

ReglasCotizacion DatosDocumento::reglasCotizacion() const
{
    ReglasCotizacion reglas;
    reglas.delimitador = parametros().delimitadorFecha;
    reglas.patronFecha = parametros().formatoFecha;
    reglas.fechaCotizacion = empresa.fechaCotizacion;
    return reglas;
}

void DatosDocumento::MostrarFallo(const Fallo &fallo) const
{
    Error(fallo.numeroTexto, fallo.detalle);
}

namespace {

QList<std::pair<QString, qint16>> LeerCodigos(Conexion &conexion, const QString &tabla, const QString &prefijo)
{
    QList<std::pair<QString, qint16>> codigos;
    auto rs = conexion.Abrir(QStringLiteral("Select %1Codigo, %1Abreviacion, %1Nombre From %2 Where %1Codigo <> 0 Order By %1Codigo")
                                 .arg(prefijo, tabla));
    for (; !rs->Fin(); rs->MoverSiguiente()) {
        const QString abreviacion = rs->Texto(prefijo + QStringLiteral("Abreviacion")).trimmed();
        const QString nombre = rs->Texto(prefijo + QStringLiteral("Nombre")).trimmed();
        codigos.append({abreviacion.isEmpty() ? nombre : abreviacion + QStringLiteral(" - ") + nombre,
                        qint16(rs->Entero(prefijo + QStringLiteral("Codigo")))});
    }
    return codigos;
}

} // namespace

QList<std::pair<QString, qint16>> DatosDocumento::LeerProyectos() const
{
    return LeerCodigos(*conexion(), QStringLiteral("cceProyectos"), QStringLiteral("Pro"));
}

QList<std::pair<QString, qint16>> DatosDocumento::LeerDepartamentos() const
{
    return LeerCodigos(*conexion(), QStringLiteral("cceDepartamentos"), QStringLiteral("Dep"));
}

QList<std::pair<QString, qint16>> DatosDocumento::LeerLibros(bool excluirSistema) const
{
    const ParametrosSistema &p = parametros();
    QString sql = QStringLiteral("Select * From genLibros ");
    if (excluirSistema)
        sql += QStringLiteral("Where LibCodigo Not In (")
             + QStringList{QString::number(p.libroResumen), QString::number(p.libroApertura), QString::number(p.libroADC),
                           QString::number(p.libroPrimeraApertura), QString::number(p.libroCierre)}
                   .join(QStringLiteral(", "))
             + QStringLiteral(")");
    sql += QStringLiteral(" Order By LibNombre");
    QList<std::pair<QString, qint16>> libros;
    auto rs = conexion()->Abrir(sql);
    for (; !rs->Fin(); rs->MoverSiguiente())
        libros.append({rs->Texto(QStringLiteral("LibNombre")).trimmed(), qint16(rs->Entero(QStringLiteral("LibCodigo")))});
    return libros;
}
