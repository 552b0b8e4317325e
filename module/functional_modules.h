// The product's functional modules.
#pragma once

#include <cstdint>

namespace ulm::module {

// A functional module, and the language engine that is to load it.
struct FunctionalModule {
  const wchar_t* file;    // a bare name: where it lies is the manager's to know
  const wchar_t* engine;  // "TX", or "MGD" for managed code
};

// The load table, in load order.
inline constexpr FunctionalModule kFunctionalModules[] = {
    {L"ULM_Classification.dll", L"TX"},   {L"ULM_Segmentation.dll", L"TX"},
    {L"ULM_Filtration.dll", L"TX"},       {L"ULM_SegmentationNet.dll", L"MGD"},
    {L"ULM_Compare.dll", L"TX"},          {L"ULM_Measurement.dll", L"TX"},
    {L"ULM_Meshing.dll", L"TX"},          {L"ULM_Topology.dll", L"TX"},
    {L"ULM_Vectorization.dll", L"TX"},    {L"ULM_Registration.dll", L"TX"},
    {L"ULM_RegistrationMgd.dll", L"TX"},  // managed by name alone
    {L"ULM_RegistrationNet.dll", L"MGD"},
};

// The third argument of every load.
inline constexpr std::int32_t kLoadNumber = 3;

}  // namespace ulm::module

// Hands the modules of the table to the host's language-engine manager, in order. A module that
// fails to load changes nothing. False where there is no manager, or where a CXException ended the
// loading: then the modules before it stay loaded. Any other exception passes on.
bool loadFunctionalModules();
