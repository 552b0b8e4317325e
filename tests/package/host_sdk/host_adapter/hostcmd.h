#pragma once
#include <engines/manager.hpp>
