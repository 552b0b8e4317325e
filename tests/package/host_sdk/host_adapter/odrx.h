#pragma once
#include <runtime/array.hpp>
#include <runtime/errors.hpp>
#include <runtime/module.hpp>
#include <runtime/objects.hpp>
#include <runtime/text.hpp>

// This host's name for the class that makes a module object.
template <class Module, class Interface>
using OdRxWin32Module = RxModuleObject<Module, Interface>;
