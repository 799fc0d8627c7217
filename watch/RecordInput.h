// The reading end of a connection under TLS, in which adb's announcement of TLS may stand between two records.
#pragma once

#include <openssl/bio.h>

// A BIO for SSL_set0_rbio that reads the socket, which stays its owner's. Where a record would begin it passes over an
// STLS message; everything else is TLS's.
//
// adb announces TLS on one thread and begins it on another: its announcement comes before the hello, behind it, or,
// when the second thread stops the first before its turn, never.
bssl::UniquePtr<BIO> OpenRecordInput(int fd);
