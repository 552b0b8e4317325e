#pragma once
#include <system/calls.hpp>
