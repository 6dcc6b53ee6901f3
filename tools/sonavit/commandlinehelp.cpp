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

const char* const log = "Print the object model's log records from LEVEL on\n"
                        "to standard error: debug, info, warning, error,\n"
                        "fatal or off (the default)";

const char* const endpoint = "Id, name, or part of one, or a default endpoint";
const char* const card = "Name, instance id, or part of one (default: all)";

const char* const anyId = "Endpoint id, wave id, DirectSound GUID, instance id,\n"
                          "container, card id or parent of the card";
const char* const eventKinds = "Only these kinds, with commas: added, removed,\n"
                               "state, volume, default, name, format, hardware,\n"
                               "service, other";
const char* const via = "Read with the client layer (layer, the default) or\n"
                        "with the object model (model)";

const char* const anonymous = "Replace serial numbers, addresses, container ids\n"
                              "and names";

const char* const moreHelp = "\n"
                             "sonavit help COMMAND describes a command.\n";

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
                             "  sonavit save levels.json; sonavit restore levels.json\n"
                             "  sonavit capture --anonymous -o computer.json\n"
                             "\n"
                             "Exit codes: 0 success, 1 operation failed, 2 usage error, 3 not there.\n";

const char* const list = "\n"
                         "The list marks default endpoints with *, and those of single roles with m\n"
                         "(multimedia) and c (communications). It marks cards with a line or a digital\n"
                         "jack with [line] and [digital]. In a narrow terminal it leaves columns out.\n"
                         "The columns of --short are id, flow, state, default roles, percent, decibels,\n"
                         "mute, jack, card and name; what is not known is empty.\n";

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

const char* const explain = "\n"
                            "Says why the endpoint is in its card, why it has its jacks, why these hardware\n"
                            "controls and no others, and why it is a default or not. Each answer is a chain\n"
                            "of facts, each with the call that gave it. Nothing is changed.\n";

const char* const find = "\n"
                         "Prints each endpoint that the id belongs to, with all of its ids.\n";

const char* const refer = "\n"
                          "A reference still means the endpoint after a restart, in another USB port, or\n"
                          "with a new driver; resolve finds it. It contains names and serial numbers.\n";

const char* const resolve = "\n"
                            "Prints what the reference means here, and why. Exit code 3 if it means nothing.\n";

const char* const doctor = "\n"
                           "Finds calls that fail, answers that cannot be right, and what is odd: each with\n"
                           "its effect and its usual cause. Nothing is changed. Exit code 0 if there is no\n"
                           "finding, otherwise 1.\n";

const char* const save = "\n"
                         "Saves the volumes and mutes of all endpoints, their hardware controls and the\n"
                         "inputs of selectors, as JSON that can be read and edited; see restore.\n";

const char* const restore = "\n"
                            "Endpoints are found again as resolve finds them. What cannot be put back is\n"
                            "listed, and everything else is put back.\n";

const char* const capture = "\n"
                            "The file is a simulated machine that answers as this computer does, for\n"
                            "--machine FILE and for tests. Calls that fail become faults in the file, and\n"
                            "standard error has a line for each. Nothing is changed. --anonymous replaces\n"
                            "serial numbers and Bluetooth addresses of devices, container ids, the names of\n"
                            "the account and of the computer, and names as in \"Anna's Headset\"; look through\n"
                            "the file before you send it.\n";

const char* const setControl = "\n"
                               "CONTROL is a name or a part that no other one contains, as controls shows it, or\n"
                               "an id, as controls --json does. LEVEL is a volume such as 50%, -12.5dB, 3dB+ or\n"
                               "5%-, or on or off, which mutes and unmutes.\n";

const char* const select = "\n"
                           "SELECTOR and INPUT are names or parts that no other one contains, as selectors\n"
                           "shows them, or ids, as selectors --json does.\n";
}
