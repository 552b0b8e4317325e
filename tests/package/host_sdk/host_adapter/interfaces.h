#pragma once
#include <app/application.hpp>
#include <app/engine_manager.hpp>
#include <app/heap.hpp>
#include <app/main_object.hpp>
#include <app/parameters.hpp>
#include <app/unknown.hpp>
