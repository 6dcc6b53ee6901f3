/// The longer texts of the program's help, as they are printed.
#pragma once

namespace sonavit::program::help
{
// What the options for all commands do.
extern const char* const machine;
extern const char* const account;
extern const char* const latency;
extern const char* const log;

// What the words behind a command mean.
extern const char* const endpoint;
extern const char* const card;
extern const char* const anyId;
extern const char* const eventKinds;
extern const char* const via;
extern const char* const anonymous;

// Paragraphs below the list of options; each begins with an empty line.
extern const char* const moreHelp;
extern const char* const endpointNames;
extern const char* const volumeForms;
extern const char* const globalOptions;
extern const char* const temporaryChanges;
extern const char* const examples;

// Such paragraphs about a single command.
extern const char* const list;
extern const char* const selectors;
extern const char* const graph;
extern const char* const ask;
extern const char* const monitor;
extern const char* const format;
extern const char* const explain;
extern const char* const find;
extern const char* const refer;
extern const char* const resolve;
extern const char* const doctor;
extern const char* const save;
extern const char* const restore;
extern const char* const capture;
extern const char* const setControl;
extern const char* const select;
}
