#pragma once

#include <QLocale>
#include <QString>

// A number mask in the usual spreadsheet notation: "#" an optional digit, "0" a required
// digit, "," thousands grouping, "." the decimal point; the printed separators are the
// locale's. "#,##0.00" prints 1234.5 as 1.234,50 in Spanish and 1,234.50 in English.
// Text around the digits ("U$S #,##0.00") is kept as is; a mask without digit characters
// prints the number with its own decimals.
class Mascara
{
public:
    explicit Mascara(const QString &mascara = QStringLiteral("#,##0.00"));

    QString Formatear(double valor, const QLocale &locale = QLocale()) const;
    int decimales() const { return m_decimalesMax; }
    const QString &texto() const { return m_texto; }

private:
    QString m_texto;
    QString m_prefijo;
    QString m_sufijo;
    bool m_agrupar = false;
    bool m_valida = false;
    int m_enterosMin = 0;
    int m_decimalesMin = 0;
    int m_decimalesMax = 0;
};

// Reads a number as the user or a mask wrote it in the locale: grouping separators are
// ignored, the locale's decimal separator (or a point) is the decimal point. False when the
// text is no number.
bool LeerNumero(const QString &texto, double &valor, const QLocale &locale = QLocale());
double LeerNumero(const QString &texto, const QLocale &locale = QLocale());

// Prints with the mask and reads the text back: the value rounded as the user sees it.
double RedondearConMascara(double valor, const QString &mascara, const QLocale &locale = QLocale());
