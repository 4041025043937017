#pragma once

#include <QString>
#include <QVariant>

// SQLite's LIKE folds the case of ASCII letters only ("área" misses "Área"), while
// PostgreSQL's ILIKE, which the program's Like becomes there, folds every letter. A SQLite
// connection gets a LIKE that folds every letter, so that one search finds the same entries
// on both engines. Neither folds accents: "area" does not find "área" on either.

// Whether texto matches patron as LIKE reads it: "%" any run of characters, "_" one, and
// escape (when given) before either to take it as itself. Case is folded for every letter.
bool CoincideLike(const QString &patron, const QString &texto, QChar escape = QChar());

// Puts that LIKE on the SQLite connection whose driver handle is given (QSqlDriver::handle());
// false when the handle is no SQLite one or the engine refused.
bool RegistrarLikeSinMayusculas(const QVariant &manejador);
