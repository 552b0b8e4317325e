#include "module/glue/exceptions.h"

#include "module/glue/instance.h"

CXException::CXException(std::uint32_t code) noexcept
    : code_(code), module_(Module_GetInstance()) {}
CXException::~CXException() = default;
std::uint32_t CXException::GetCode() const noexcept { return code_; }
void CXException::Reserved() const noexcept {}

CXIFaceException::CXIFaceException(const std::type_info& wanted) noexcept
    : CXException(kCode), wanted_(&wanted) {}
CXIFaceException::~CXIFaceException() = default;
void CXIFaceException::Reserved() const noexcept {}
