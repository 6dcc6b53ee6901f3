#include "tools/sonavit/commandlinehelp.h"

namespace sonavit::program::help
{
const char* const machine = "Use a simulated machine: one of bluetooth, broken,\n"
                            "crowded, desktop, empty, laptop, laptop-user,\n"
                            "published, remote-desktop, studio, virtual and\n"
                            "waking, or a JSON file.\n"
                            "Default: the system's own audio on Windows, desktop\n"
                            "on other systems";

const char* const account = "Use the simulated machine under this account:\n"
                            "administrator, or ordinary, which may not change\n"
                            "formats. Default: the account that the machine has";

const char* const latency = "How long calls take on the simulated machine: none,\n"
                            "or windows (figures that users have published)";

const char* const log = "Print the library's log records from LEVEL on to\n"
                        "standard error: debug, info, warning, error, fatal\n"
                        "or off (the default)";

const char* const endpoint = "Id, name, or part of one, or a default endpoint";
const char* const card = "Name, instance id, or part of one (default: all)";

const char* const endpointNames = "\n"
                                  "ENDPOINT is the id or name of an endpoint, a part that no other id or name\n"
                                  "contains, @DEFAULT_OUTPUT@, or @DEFAULT_INPUT@.\n";

const char* const volumeForms = "\n"
                                "VOLUME is one of\n"
                                "  50%, 33.3%, 50         percent of the range\n"
                                "  -12.5dB, +3dB          decibels\n"
                                "  5%+, +5%, 3dB+         louder by that much\n"
                                "  5%-, -5%, 3dB-         softer by that much\n";

const char* const globalOptions = "\n"
                                  "Every command also takes --machine, --account, --latency, --json\n"
                                  "and --log; see sonavit --help.\n";

const char* const temporaryChanges = "\n"
                                     "On a simulated machine the change lasts until sonavit ends.\n";

const char* const examples = "\n"
                             "Examples:\n"
                             "  sonavit                                    list the sound cards\n"
                             "  sonavit set-volume @DEFAULT_OUTPUT@ 5%+    raise the volume\n"
                             "  sonavit mute \"Headset Microphone\" on\n"
                             "  sonavit graph \"Analog Audio\" | dot -Tsvg -o graph.svg\n"
                             "  sonavit --machine studio --json controls \"Main Monitors\"\n"
                             "\n"
                             "Exit codes: 0 success, 1 operation failed, 2 usage error.\n";

const char* const list = "\n"
                         "The list marks the default endpoints of the console role with *, and cards with\n"
                         "a line or a digital jack with [line] and [digital]. In a narrow terminal it\n"
                         "leaves columns out.\n";

const char* const selectors = "\n"
                              "The list marks the selected input with *.\n";

const char* const graph = "\n"
                          "Without --json the graph is in the DOT language.\n";

const char* const ask = "\n"
                        "The answers say whether the card has an analog output, a digital output, a line\n"
                        "input and a microphone input, whatever their states.\n";

const char* const monitor = "\n"
                            "A simulated machine plays the events that its file describes.\n";

const char* const format = "\n"
                           "Windows lets only administrators set a format. It is put back after --hold\n"
                           "seconds, or at Ctrl-C.\n";
}
