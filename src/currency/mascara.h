#pragma once

#include <QLocale>
#include <QString>

#include "importe.h"

// A number mask in the usual spreadsheet notation: "#" an optional digit, "0" a required
// digit, "," thousands grouping, "." the decimal point; the printed separators are the
// locale's. "#,##0.00" prints 1234.5 as 1.234,50 in Spanish and 1,234.50 in English.
// Text around the digits ("U$S #,##0.00") is kept as is. A blank mask prints the number
// with its own decimals and no grouping; any other mask without digit characters prints
// itself.
class Mascara
{
public:
    explicit Mascara(const QString &mascara = QStringLiteral("#,##0.00"));

    QString Formatear(double valor, const QLocale &locale = QLocale()) const;
    // The number alone, without the text around it: what LeerNumero reads back.
    QString FormatearNumero(double valor, const QLocale &locale = QLocale()) const;
    // An amount is printed from its own decimal digits, never through a double.
    QString Formatear(Importe valor, const QLocale &locale = QLocale()) const;
    QString FormatearNumero(Importe valor, const QLocale &locale = QLocale()) const;
    // Whether the mask has digit characters; decimales() means something only then.
    bool valida() const { return m_valida; }
    int decimales() const { return m_decimalesMax; }
    const QString &texto() const { return m_texto; }

private:
    QString formatearDigitos(QString digitos, const QLocale &locale) const;

    QString m_texto;
    QString m_prefijo;
    QString m_sufijo;
    bool m_agrupar = false;
    bool m_valida = false;
    int m_enterosMin = 0;
    int m_decimalesMin = 0;
    int m_decimalesMax = 0;
};

// Reads a number as the user or a mask wrote it in the locale, by one rule that never
// scales a number silently:
// - an optional leading minus sign, then digits and separators: the marks "," and ".", and
//   as grouping only, the locale's group separator and blanks;
// - the locale's decimal mark is always the decimal mark (once, with only digits after it);
// - without it, the other mark ("." against "," and the reverse) is the decimal mark when it
//   is the last separator and is not followed by exactly three digits ("12,5" is 12.5 in
//   the C locale, "1500.50" is 1500.5 in es_UY); followed by exactly three digits it groups
//   ("1.500" is 1500 in es_UY, "1,500" is 1500 in en_US);
// - group separators stand only between groups of three digits, after a first group of one
//   to three digits that does not start with 0, all of one kind and never the mark that is
//   the decimal mark.
// Anything else ("1.2.3,4", "1,23,4", "0.500" in es_UY, "12a") is refused: false, and
// valor is left as it was.
bool LeerNumero(const QString &texto, double &valor, const QLocale &locale = QLocale());
// The number, or 0 when the text is refused.
double LeerNumero(const QString &texto, const QLocale &locale = QLocale());

// Prints with the mask and reads the text back: the value rounded as the user sees it.
double RedondearConMascara(double valor, const QString &mascara, const QLocale &locale = QLocale());
// The value rounded as the mask prints it, as an amount: to the mask's decimals (four at
// most), or to four when the mask has no digits.
Importe ImporteConMascara(double valor, const Mascara &mascara);
Importe ImporteConMascara(Importe valor, const Mascara &mascara);
Importe ImporteConMascara(double valor, const QString &mascara);
Importe ImporteConMascara(Importe valor, const QString &mascara);
// Rounds to that many decimals as a mask with them prints the value: on its decimal digits,
// halves away from zero (2.675 to 2.68). Far cheaper than printing and reading back.
double RedondearADecimales(double valor, int decimales);
