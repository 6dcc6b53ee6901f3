#include "sonavit/codes.h"

#include "sonavit/problem.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace
{
using sonavit::knownCode;

TEST(KnownCode, HasNameAndWords)
{
    ASSERT_NE(nullptr, knownCode(0x88890008));
    EXPECT_STREQ("AUDCLNT_E_UNSUPPORTED_FORMAT", knownCode(0x88890008)->name);
    EXPECT_STREQ("the format is not supported", knownCode(0x88890008)->words);
    EXPECT_EQ(nullptr, knownCode(0x8889DEAD));
    EXPECT_EQ(nullptr, knownCode(0));
}

/// The lookup depends on the order of the table, so that a code at each end and of each family must be found.
TEST(KnownCode, IsFoundInEachFamily)
{
    for (const std::uint32_t code : {0x1U, 0x15U, 0x8000000AU, 0x80004003U, 0x80010108U, 0x80020005U, 0x80030005U,
                                     0x80040154U, 0x800401F0U, 0x80070005U, 0x80070490U, 0x800706BAU, 0x80080005U,
                                     0x800F020BU, 0x88890001U, 0x88890029U, 0xE0000204U, 0xE000020BU, 0xE0000225U})
        EXPECT_NE(nullptr, knownCode(code)) << std::hex << code;
}

TEST(KnownCode, OfTheWaveFunctionsGivesOtherCallsNoWords)
{
    EXPECT_STREQ("MMSYSERR_NOTSUPPORTED", knownCode(8)->name);
    EXPECT_EQ("0x00000008", sonavit::reasonText(8));
    EXPECT_EQ("0x80010108, the object has lost its connection",
              sonavit::reasonText(static_cast<std::int32_t>(0x80010108)));
}

/// What people read in place of each code, and the name that they look for in documentation.
TEST(KnownCode, HasItsOwnNameAndWords)
{
    struct Row
    {
        std::uint32_t code;
        const char* name;
        const char* words;
    };
    const std::vector<Row> rows = {
        {0x00000001, "MMSYSERR_ERROR", "unspecified error"},
        {0x00000002, "MMSYSERR_BADDEVICEID", "no such device number"},
        {0x00000003, "MMSYSERR_NOTENABLED", "the driver is not enabled"},
        {0x00000004, "MMSYSERR_ALLOCATED", "the device is in use"},
        {0x00000005, "MMSYSERR_INVALHANDLE", "invalid handle"},
        {0x00000006, "MMSYSERR_NODRIVER", "no driver is installed"},
        {0x00000007, "MMSYSERR_NOMEM", "out of memory"},
        {0x00000008, "MMSYSERR_NOTSUPPORTED", "not supported"},
        {0x00000009, "MMSYSERR_BADERRNUM", "unknown code"},
        {0x0000000A, "MMSYSERR_INVALFLAG", "invalid flag"},
        {0x0000000B, "MMSYSERR_INVALPARAM", "invalid argument"},
        {0x0000000C, "MMSYSERR_HANDLEBUSY", "the handle is in use on another thread"},
        {0x0000000D, "MMSYSERR_INVALIDALIAS", "no such alias"},
        {0x0000000E, "MMSYSERR_BADDB", "the registry is damaged"},
        {0x0000000F, "MMSYSERR_KEYNOTFOUND", "no such registry key"},
        {0x00000010, "MMSYSERR_READERROR", "the registry cannot be read"},
        {0x00000011, "MMSYSERR_WRITEERROR", "the registry cannot be written"},
        {0x00000012, "MMSYSERR_DELETEERROR", "the registry refuses to delete"},
        {0x00000013, "MMSYSERR_VALNOTFOUND", "no such registry value"},
        {0x00000014, "MMSYSERR_NODRIVERCB", "the driver does not call back"},
        {0x00000015, "MMSYSERR_MOREDATA", "there are more data"},
        {0x8000000A, "E_PENDING", "the data are not available yet"},
        {0x80004001, "E_NOTIMPL", "not implemented"},
        {0x80004002, "E_NOINTERFACE", "no such interface"},
        {0x80004003, "E_POINTER", "success without a result"},
        {0x80004004, "E_ABORT", "aborted"},
        {0x80004005, "E_FAIL", "unspecified error"},
        {0x8000FFFF, "E_UNEXPECTED", "unexpected failure"},
        {0x80010001, "RPC_E_CALL_REJECTED", "the other side refuses the call"},
        {0x80010007, "RPC_E_SERVER_DIED", "the other side has ended"},
        {0x80010012, "RPC_E_SERVER_DIED_DNE", "the other side has ended"},
        {0x80010105, "RPC_E_SERVERFAULT", "the other side failed with an exception"},
        {0x80010106, "RPC_E_CHANGED_MODE", "the thread has another apartment"},
        {0x80010108, "RPC_E_DISCONNECTED", "the object has lost its connection"},
        {0x8001010A, "RPC_E_SERVERCALL_RETRYLATER", "the other side is busy"},
        {0x8001010D, "RPC_E_CANTCALLOUT_ININPUTSYNCCALL", "not allowed while a message is delivered"},
        {0x8001010E, "RPC_E_WRONG_THREAD", "the object belongs to another thread"},
        {0x8001011F, "RPC_E_TIMEOUT", "no answer in time"},
        {0x80020005, "DISP_E_TYPEMISMATCH", "a value of another type"},
        {0x80030005, "STG_E_ACCESSDENIED", "access denied"},
        {0x80040110, "CLASS_E_NOAGGREGATION", "the class cannot be a part of an object"},
        {0x80040154, "REGDB_E_CLASSNOTREG", "class not registered"},
        {0x80040155, "REGDB_E_IIDNOTREG", "interface not registered"},
        {0x800401F0, "CO_E_NOTINITIALIZED", "COM is not initialized"},
        {0x800401F3, "CO_E_CLASSSTRING", "invalid class name"},
        {0x800401FD, "CO_E_OBJNOTCONNECTED", "the object has lost its connection"},
        {0x80070002, "ERROR_FILE_NOT_FOUND", "no such file or key"},
        {0x80070003, "ERROR_PATH_NOT_FOUND", "no such path"},
        {0x80070005, "E_ACCESSDENIED", "access denied"},
        {0x80070006, "E_HANDLE", "invalid handle"},
        {0x8007000D, "ERROR_INVALID_DATA", "invalid data"},
        {0x8007000E, "E_OUTOFMEMORY", "out of memory"},
        {0x80070015, "ERROR_NOT_READY", "the device is not ready"},
        {0x8007001F, "ERROR_GEN_FAILURE", "the device does not work"},
        {0x80070032, "ERROR_NOT_SUPPORTED", "not supported"},
        {0x80070057, "E_INVALIDARG", "invalid argument"},
        {0x80070079, "ERROR_SEM_TIMEOUT", "no answer in time"},
        {0x800700AA, "ERROR_BUSY", "in use"},
        {0x80070422, "ERROR_SERVICE_DISABLED", "the service is disabled"},
        {0x80070424, "ERROR_SERVICE_DOES_NOT_EXIST", "the service is not installed"},
        {0x80070426, "ERROR_SERVICE_NOT_ACTIVE", "the service is not running"},
        {0x8007045D, "ERROR_IO_DEVICE", "the device failed to transfer data"},
        {0x8007048F, "ERROR_DEVICE_NOT_CONNECTED", "the device is not connected"},
        {0x80070490, "E_NOTFOUND", "not found"},
        {0x80070491, "ERROR_NO_MATCH", "no match"},
        {0x80070492, "ERROR_SET_NOT_FOUND", "the driver does not know such properties"},
        {0x800705AA, "ERROR_NO_SYSTEM_RESOURCES", "out of system resources"},
        {0x800705B4, "ERROR_TIMEOUT", "no answer in time"},
        {0x80070651, "ERROR_DEVICE_REMOVED", "the device has been removed"},
        {0x800706BA, "RPC_S_SERVER_UNAVAILABLE", "the audio service is not available"},
        {0x800706BB, "RPC_S_SERVER_TOO_BUSY", "the service is too busy"},
        {0x800706BE, "RPC_S_CALL_FAILED", "the service has ended during the call"},
        {0x800706BF, "RPC_S_CALL_FAILED_DNE", "the service has ended before the call"},
        {0x800706D9, "EPT_S_NOT_REGISTERED", "the service does not listen"},
        {0x80080005, "CO_E_SERVER_EXEC_FAILURE", "the server does not start"},
        {0x80080008, "CO_E_SERVER_STOPPING", "the server is ending"},
        {0x800F020B, "SPAPI_E_NO_SUCH_DEVINST", "no such device instance"},
        {0x800F0225, "SPAPI_E_NO_SUCH_DEVICE_INTERFACE", "no such device interface"},
        {0x88890001, "AUDCLNT_E_NOT_INITIALIZED", "the stream is not initialized"},
        {0x88890002, "AUDCLNT_E_ALREADY_INITIALIZED", "the stream is initialized already"},
        {0x88890003, "AUDCLNT_E_WRONG_ENDPOINT_TYPE", "an endpoint of the other direction"},
        {0x88890004, "AUDCLNT_E_DEVICE_INVALIDATED", "the device is no longer present"},
        {0x88890005, "AUDCLNT_E_NOT_STOPPED", "the stream is not stopped"},
        {0x88890006, "AUDCLNT_E_BUFFER_TOO_LARGE", "the buffer is too large"},
        {0x88890007, "AUDCLNT_E_OUT_OF_ORDER", "a call out of order"},
        {0x88890008, "AUDCLNT_E_UNSUPPORTED_FORMAT", "the format is not supported"},
        {0x88890009, "AUDCLNT_E_INVALID_SIZE", "invalid size"},
        {0x8889000A, "AUDCLNT_E_DEVICE_IN_USE", "another program has the device for itself"},
        {0x8889000B, "AUDCLNT_E_BUFFER_OPERATION_PENDING", "a buffer is still in use"},
        {0x8889000C, "AUDCLNT_E_THREAD_NOT_REGISTERED", "the thread is not registered"},
        {0x8889000E, "AUDCLNT_E_EXCLUSIVE_MODE_NOT_ALLOWED", "exclusive use is not allowed"},
        {0x8889000F, "AUDCLNT_E_ENDPOINT_CREATE_FAILED", "the endpoint cannot be created"},
        {0x88890010, "AUDCLNT_E_SERVICE_NOT_RUNNING", "the audio service is not running"},
        {0x88890011, "AUDCLNT_E_EVENTHANDLE_NOT_EXPECTED", "the stream takes no event"},
        {0x88890012, "AUDCLNT_E_EXCLUSIVE_MODE_ONLY", "exclusive use only"},
        {0x88890013, "AUDCLNT_E_BUFDURATION_PERIOD_NOT_EQUAL", "buffer and period differ"},
        {0x88890014, "AUDCLNT_E_EVENTHANDLE_NOT_SET", "the stream waits for an event"},
        {0x88890015, "AUDCLNT_E_INCORRECT_BUFFER_SIZE", "incorrect buffer size"},
        {0x88890016, "AUDCLNT_E_BUFFER_SIZE_ERROR", "the buffer size is out of range"},
        {0x88890017, "AUDCLNT_E_CPUUSAGE_EXCEEDED", "the stream takes too much computing time"},
        {0x88890018, "AUDCLNT_E_BUFFER_ERROR", "no buffer is available"},
        {0x88890019, "AUDCLNT_E_BUFFER_SIZE_NOT_ALIGNED", "the buffer size is not aligned"},
        {0x88890020, "AUDCLNT_E_INVALID_DEVICE_PERIOD", "invalid period"},
        {0x88890021, "AUDCLNT_E_INVALID_STREAM_FLAG", "invalid flag"},
        {0x88890022, "AUDCLNT_E_ENDPOINT_OFFLOAD_NOT_CAPABLE", "the endpoint cannot be offloaded"},
        {0x88890023, "AUDCLNT_E_OUT_OF_OFFLOAD_RESOURCES", "no resources for offloading"},
        {0x88890024, "AUDCLNT_E_OFFLOAD_MODE_ONLY", "offloaded streams only"},
        {0x88890025, "AUDCLNT_E_NONOFFLOAD_MODE_ONLY", "streams without offloading only"},
        {0x88890026, "AUDCLNT_E_RESOURCES_INVALIDATED", "the stream has lost its resources"},
        {0x88890027, "AUDCLNT_E_RAW_MODE_UNSUPPORTED", "the raw mode is not supported"},
        {0x88890028, "AUDCLNT_E_ENGINE_PERIODICITY_LOCKED", "the period is fixed"},
        {0x88890029, "AUDCLNT_E_ENGINE_FORMAT_LOCKED", "the format is fixed"},
        {0xE0000204, "ERROR_KEY_DOES_NOT_EXIST", "no such registry key"},
        {0xE0000209, "ERROR_INVALID_REG_PROPERTY", "no such property"},
        {0xE000020B, "ERROR_NO_SUCH_DEVINST", "no such device instance"},
        {0xE0000225, "ERROR_NO_SUCH_DEVICE_INTERFACE", "no such device interface"},
    };
    for (const Row& row : rows)
    {
        const sonavit::KnownCode* const known = knownCode(row.code);
        ASSERT_NE(nullptr, known) << row.name;
        EXPECT_EQ(row.code, known->code) << row.name;
        EXPECT_STREQ(row.name, known->name);
        EXPECT_STREQ(row.words, known->words) << row.name;
    }
}
}
