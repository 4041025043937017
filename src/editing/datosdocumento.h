#pragma once

#include "editing/proceso.h"
#include "editing/sesion.h"
#include "currency/tipocambio.h"
#include "entries/asientodatos.h"
#include "store/fallo.h"

#include <QDate>
#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

class ServicioMensajes;

// What a started document knows of its session: the process it lives in, the user, the
// company and the user's choices. The document owns it and keeps it current; its edit
// session and entry commands read it.
struct DatosDocumento
{
    std::shared_ptr<Proceso> proceso;
    ServicioMensajes *mensajes = nullptr;
    std::function<QString(int)> texto; // catalogue text by its number (1000 and up)
    qint16 usuario = 0;
    ConfigEmpresa empresa;
    QString letras;                    // the user's permission letters
    QString formatoFecha;              // the user's date format, in the suite's notation
    QDate fechaAsientoApertura;
    bool asiSaveB = false;             // entries that balance are stored as drafts

    // Null until the start-up has opened the connection.
    Conexion *conexion() const { return proceso ? proceso->conexion.get() : nullptr; }
    const Reloj &reloj() const { return *proceso->reloj; }
    const ParametrosSistema &parametros() const { return proceso->parametros; }
    CatalogoMonedas &monedas() const { return proceso->monedas; }
    qint32 idEmpresa() const { return proceso->IDEmpresa; }
    // What a rate lookup needs of the session: the database's date literal and the company's
    // quotation-date rule.
    ReglasCotizacion reglasCotizacion() const;
    LibrosSistema librosSistema() const;
    // The books by name, the system books left out when asked; the projects and the
    // departments lines may carry, as "abbreviation - name" and code (datossesion.h).
    Resultado<QList<std::pair<QString, qint16>>> LeerLibros(bool excluirSistema) const;
    Resultado<QList<std::pair<QString, qint16>>> LeerProyectos() const;
    Resultado<QList<std::pair<QString, qint16>>> LeerDepartamentos() const;
    bool TienePermiso(QChar letra) const;

    // Catalogue messages, by their numbers.
    void Error(int numero, const QString &detalle = {}) const;
    void Advertir(int numero) const;
    void Informar(int numero) const;
    bool Preguntar(int numero) const;
    void MostrarFallo(const Fallo &fallo) const;
    // The value a read answered; none, after telling its failure with the command's text
    // numero and the failure's detail, when it failed.
    template<class T>
    std::optional<T> Leido(Resultado<T> leido, int numero) const
    {
        if (leido)
            return std::move(*leido);
        Error(numero, leido.fallo().detalle);
        return std::nullopt;
    }
};
