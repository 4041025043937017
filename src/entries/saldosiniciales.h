#pragma once

#include "entries/asientodatos.h"
#include "store/conexion.h"
#include "store/fallo.h"

#include <QDate>
#include <QString>

// What the company's opening-balance entry ("saldos iniciales") needs from the database.
// Shows nothing; a failure of the database is answered as a Fallo with text 0, for the caller
// to tell with its own.
class SaldosIniciales
{
public:
    // libro: the opening-balance book; delimitador and patron: the database's date literal.
    SaldosIniciales(Conexion &conexion, qint16 libro, qint32 empresa, const QString &delimitador, const QString &patron);

    // Whether the company has its opening-balance entry: a registered entry of that book.
    Resultado<bool> ExisteAsientoApertura();
    // An entry of that book out of the trash, in any state, other than excepto; 0 when there
    // is none. A draft or incomplete one is not the opening-balance entry yet, but a second
    // one must not be made beside it.
    Resultado<qint32> OtroAsientoApertura(qint32 excepto = 0);
    // The accounts of the company's class that are closed on or after the opening-balance
    // date, as ids joined by ","; only among cuentas (ids joined by ",") when it is given.
    Resultado<QString> CuentasCerradasApertura(const QDate &fechaApertura, quint8 clase, const QString &cuentas = {});
    // Opens the accounts (ids joined by ","): no balance, no closing date.
    [[nodiscard]] std::optional<Fallo> AbrirCuentas(const QString &cuentas);

    // One line per account of the company's class (not a folder) with a stored balance: the
    // balance in the account's currency and in the accounting currency, as absolute values.
    // The side: a balance is stored with the sign of the account type's usual side (TCuSigno
    // 1: assets and expenses, usually debit; -1: liabilities, equity and income, usually
    // credit), so the line goes to the debit when the balance's sign times TCuSigno is
    // positive and to the credit when it is negative: an asset of 100 is a debit, an asset
    // of -100 (an overdrawn account) a credit, a liability of 100 a credit. An account
    // without a currency, or in the accounting currency, has one amount. monedas, when
    // given, gets each line's foreign currency (0 for the accounting one); a foreign balance
    // stored without its value in the accounting currency comes with ImporteMC 0, to be
    // valued by the caller.
    Resultado<QVector<LineaDatos>> LineasDeSaldos(quint8 clase, qint16 monedaContabilidad, QVector<qint16> *monedas = nullptr);

private:
    Conexion &m_conexion;
    qint16 m_libro;
    qint32 m_empresa;
    QString m_delimitador;
    QString m_patron;
};
