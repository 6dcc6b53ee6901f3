/// @file
/// The machine of a process whose programs know nothing of it.
#pragma once

#include "platform/coreaudio.h"

namespace sim::server
{
/// Starts the machine that the environment names, at the first call. It runs until the process ends, because a program
/// may release all its objects and ask for an enumerator again.
///
/// - `SONAVIT_MACHINE`: the name or the file of the machine.
/// - `SONAVIT_ACCOUNT`: `administrator` or `ordinary`, in place of the account in the machine's file.
/// - `SONAVIT_JOURNAL`, `SONAVIT_CENSUS`: files that writeRecords() writes; without the first one no call is recorded.
///
/// @return CLASS_E_CLASSNOTAVAILABLE if there is no such machine or account; the first call then writes the reason to
/// standard error
HRESULT start();

/// Writes the files for the journal and the census, if the environment asks for them and the machine has started. Call
/// it when the process ends. It then takes
/// no lock of the machine. The memory for the text comes from the process's heap, whose lock a terminated thread may
/// hold.
void writeRecords();
}
