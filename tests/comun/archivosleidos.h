#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QString>

#include <gtest/gtest.h>

// An exported file read back by a standard parser (python's csv, openpyxl, html.parser):
// its rows as JSON. modo: "csv", "xlsx" or "html".
inline QJsonArray LeerArchivoExportado(const char *modo, const QString &ruta)
{
    QProcess p;
    p.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral(ASIENTOS_LEER_ARCHIVO), QString::fromLatin1(modo), ruta});
    p.waitForFinished(60000);
    EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    return QJsonDocument::fromJson(p.readAllStandardOutput()).array();
}

// The text of a PDF file as pdftotext lays it out, pages apart by form feeds.
inline QString TextoPDF(const QString &ruta)
{
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), ruta, QStringLiteral("-")});
    p.waitForFinished(60000);
    EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    return QString::fromUtf8(p.readAllStandardOutput());
}
