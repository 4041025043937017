#pragma once

#include "lumerasiento.h"

struct DatosDocumento;
class ServicioBusquedaCuentas;

// The line editor's context for a document's session: its connection, currencies, company
// rules and messages; accounts are looked up through busqueda.
ContextoLinea ContextoDeDocumento(const DatosDocumento &datos, ServicioBusquedaCuentas &busqueda);
