#pragma once
#include <runtime/memory.hpp>
