#include "tests/conformity/results.h"

#include "simulator/machine/namedvalues.h"
#include "simulator/machine/valuetext.h"

namespace conformity
{
namespace
{
constexpr HRESULT code(unsigned number)
{
    return static_cast<HRESULT>(number);
}

constexpr sim::Names<HRESULT, 20> names = {{{"S_OK", S_OK},
                                            {"S_FALSE", S_FALSE},
                                            {"E_NOTIMPL", code(0x80004001)},
                                            {"E_NOINTERFACE", code(0x80004002)},
                                            {"E_POINTER", code(0x80004003)},
                                            {"E_FAIL", code(0x80004005)},
                                            {"E_UNEXPECTED", code(0x8000FFFF)},
                                            {"E_ACCESSDENIED", code(0x80070005)},
                                            {"STG_E_ACCESSDENIED", code(0x80030005)},
                                            {"E_OUTOFMEMORY", code(0x8007000E)},
                                            {"E_INVALIDARG", code(0x80070057)},
                                            {"E_NOTFOUND", code(0x80070490)},
                                            {"AUDCLNT_E_NOT_INITIALIZED", code(0x88890001)},
                                            {"AUDCLNT_E_ALREADY_INITIALIZED", code(0x88890002)},
                                            {"AUDCLNT_E_DEVICE_INVALIDATED", code(0x88890004)},
                                            {"AUDCLNT_E_UNSUPPORTED_FORMAT", code(0x88890008)},
                                            {"AUDCLNT_E_DEVICE_IN_USE", code(0x8889000A)},
                                            {"AUDCLNT_E_SERVICE_NOT_RUNNING", code(0x88890010)},
                                            {"AUDCLNT_E_EVENTHANDLE_NOT_EXPECTED", code(0x88890011)},
                                            {"AUDCLNT_E_EVENTHANDLE_NOT_SET", code(0x88890014)}}};
}

std::string resultName(HRESULT result)
{
    const std::string name = nameOf(names, result);
    return name.empty() ? sim::resultText(result) : name;
}
}
