// The reading end of a connection under TLS, in which one message in the clear may stand between two records.
#pragma once

#include "Bytes.h"

#include <openssl/bio.h>

// A BIO for SSL_set0_rbio that reads the socket, which stays its owner's and does not block. Where a record begins it
// passes over `announcement`, once; nothing else is kept from TLS. A message that only begins like it is an error, as
// what is no TLS is.
//
// adb announces TLS on one thread and begins it on another: its announcement comes before the hello, behind it, or,
// when the second thread stops the first before its turn, never.
bssl::UniquePtr<BIO> OpenRecordInput(int fd, ByteView announcement);
