#include "core/param_value.h"

namespace {

template <class Value>
void setValue(IParam* param, const char* key, const Value& value) {
  CQLVariant variant;
  variant = value;
  param->SetValue(key, &variant);
}

}  // namespace

void Param_SetValue(IParam* param, const char* key, const char* value) {
  setValue(param, key, value);
}
void Param_SetValue(IParam* param, const char* key, const wchar_t* value) {
  setValue(param, key, value);
}
void Param_SetValue(IParam* param, const char* key, int value) { setValue(param, key, value); }
void Param_SetValue(IParam* param, const char* key, const CXString& value) {
  setValue(param, key, value);
}
void Param_SetValue(IParam* param, const char* key, const CXStringW& value) {
  setValue(param, key, value);
}
