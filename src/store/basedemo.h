#pragma once

#include "conexion.h"

#include <QDate>

// The demo company: the same data for the same reference date, on either engine. The
// program creates it on first run; test fixtures build their databases with it too.
namespace Demo {

constexpr int kEmpresa = 1;
constexpr int kMonedaPesos = 1;
constexpr int kMonedaDolares = 2;
constexpr int kMonedaEuros = 3;
constexpr int kMonedaReales = 4;
constexpr int kTipoCotizacion = 1;

constexpr int kUsuarioAdministrador = 1; // letters "AMEQ", may authorise
constexpr int kUsuarioConsulta = 2;      // letter "Q" only
constexpr int kUsuarioSinPermisos = 3;   // no letters at all
constexpr int kUsuarioContador = 4;      // letters "amqe" (case does not matter), may authorise

constexpr int kLibroDiario = 1;          // the default book (EmpPrms "lib:1")
constexpr int kLibroResumen = 90;        // system books
constexpr int kLibroApertura = 91;
constexpr int kLibroCierre = 92;
constexpr int kLibroADC = 93;
constexpr int kLibroPrimeraApertura = 94;

constexpr const char *kModulo = "PasajeAsientos";

} // namespace Demo

// Creates the schema and fills it. hoy anchors every date: the quotations cover the two
// years before it and the entries fall within them.
void CrearBaseDemo(Conexion &conexion, const QDate &hoy);

// The schema and one company with no accounts and no entries: the system books, the
// currencies and an administrator (user 1) who may do everything.
void CrearBaseVacia(Conexion &conexion, const QDate &hoy);
