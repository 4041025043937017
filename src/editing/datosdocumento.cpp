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

void DatosDocumento::MostrarFallo(const Fallo &fallo) const
{
    Error(fallo.numeroTexto, fallo.detalle);
}
