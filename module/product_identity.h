// The identity record of the product.
#pragma once

// Passes a record with the product's names, version, build and icon to the application's interface
// IHostProductInfo. Does nothing if the application, one of its interfaces or the memory for the
// record is missing. If the version resource cannot be read or is incomplete, the version is an
// empty text and the build is left out. Exceptions of the host and of the core library pass on. On
// every path all references are released.
void publishProductIdentity();
