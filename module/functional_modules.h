// The load table of the functional modules, and the step of the start that loads them.
#pragma once

#include <cstdint>

namespace ulm::module {

// A functional module and the language engine that loads it.
struct FunctionalModule {
  const wchar_t* file;    // bare file name: the manager finds the folder
  const wchar_t* engine;  // "TX", or "MGD" for managed code
};

// The load table, in load order.
inline constexpr FunctionalModule kFunctionalModules[] = {
    {L"ULM_Classification.dll", L"TX"},   {L"ULM_Segmentation.dll", L"TX"},
    {L"ULM_Filtration.dll", L"TX"},       {L"ULM_SegmentationNet.dll", L"MGD"},
    {L"ULM_Compare.dll", L"TX"},          {L"ULM_Measurement.dll", L"TX"},
    {L"ULM_Meshing.dll", L"TX"},          {L"ULM_Topology.dll", L"TX"},
    {L"ULM_Vectorization.dll", L"TX"},    {L"ULM_Registration.dll", L"TX"},
    {L"ULM_RegistrationMgd.dll", L"TX"},  // not managed, in spite of its name
    {L"ULM_RegistrationNet.dll", L"MGD"},
};

// The third argument of every call of loadModule.
inline constexpr std::int32_t kLoadNumber = 3;

}  // namespace ulm::module

// Passes each module of the table, in order, to the host's language-engine manager. The result of a
// single load is ignored. Returns true after the last module. Returns false if there is no manager,
// or if the manager raises a CXException; the modules loaded before that stay loaded. Any other
// exception passes on.
bool loadFunctionalModules();
