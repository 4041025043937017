#include "datosdocumento.h"

#include "services/serviciomensajes.h"

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

Resultado<QList<std::pair<QString, qint16>>> DatosDocumento::LeerProyectos() const
{
    return ::LeerProyectos(*conexion());
}

Resultado<QList<std::pair<QString, qint16>>> DatosDocumento::LeerDepartamentos() const
{
    return ::LeerDepartamentos(*conexion());
}

Resultado<QList<std::pair<QString, qint16>>> DatosDocumento::LeerLibros(bool excluirSistema) const
{
    return ::LeerLibros(*conexion(), parametros(), excluirSistema);
}
