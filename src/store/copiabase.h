#pragma once

#include <QString>

// Copies the books of one database into another that is empty, so that a company that
// started on a file can move to a shared server. The target gets the program's tables
// and every row of them, with their ids and stamps, in one transaction; before it is
// committed, the row counts of every table and the sums of every entry's lines are read
// back from both sides and must agree. A target that holds any table is refused, and
// nothing is written to it.
struct CopiaBase
{
    bool hecha = false;
    QString informe; // one line for the user
};
CopiaBase CopiarBase(const QString &origen, const QString &destino);
