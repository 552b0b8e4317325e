// Tells the application who this product is.
#pragma once

// Hands the application a record with the product's names, version, build and icon, by its
// interface IHostProductInfo. Without an application, or without its interfaces, nothing happens. A
// version that cannot be read, or is cut, is stored as an empty text, and the build is left out.
// Exceptions of the core library's strings and values pass on, with every reference released.
// Nothing is kept.
void publishProductIdentity();
