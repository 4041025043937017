#pragma once

#include "store/conexion.h"

#include <QDate>
#include <QString>

// What the company's opening-balance entry ("saldos iniciales") needs from the database.
// Shows nothing; errors reach the caller as ErrorBaseDatos.
class SaldosIniciales
{
public:
    // libro: the opening-balance book; delimitador and patron: the database's date literal.
    SaldosIniciales(Conexion &conexion, qint16 libro, qint32 empresa, const QString &delimitador, const QString &patron);

    // Whether the company has its opening-balance entry: a registered entry of that book.
    bool ExisteAsientoApertura();
    // The accounts of the company's class that are closed on or after the opening-balance
    // date, as ids joined by ","; only among cuentas (ids joined by ",") when it is given.
    QString CuentasCerradasApertura(const QDate &fechaApertura, quint8 clase, const QString &cuentas = {});

private:
    Conexion &m_conexion;
    qint16 m_libro;
    qint32 m_empresa;
    QString m_delimitador;
    QString m_patron;
};
