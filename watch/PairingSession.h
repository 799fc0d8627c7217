// One computer at the pairing port.
#pragma once

#include "Connection.h"
#include "Log.h"
#include "Options.h"
#include "PairedKeys.h"

// Pairs with the computer at the other end if it knows the code: its key joins the paired keys, it learns the watch's
// name. Throws CConnectionError for everything that is not the protocol.
void PairWithComputer(CConnection& connection, SSL_CTX* tls, const SOptions& options, CPairedKeys& keys, CLog& log);
