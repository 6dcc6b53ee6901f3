"""Makes mistakes in the sources of the product, one at a time, and looks whether a test notices: ./test mutants runs this.

    python3 tests/mutants --build FOLDER --report FOLDER [OPTION...]     options as those of cmake/commands/mutants
    python3 tests/mutants --targets [OPTION...]                          prints the test programs that are asked
"""

import argparse
import json
import sys
from pathlib import Path

import report
from build import Build
from drawing import drawn
from folders import FOLDERS, NAMES, folder_of, named
from recorded import Failure
from run import Run, changes_in, texts_of

COUNT = 80


def arguments_of(words):
    parser = argparse.ArgumentParser(prog="./test mutants", add_help=False,
                                     usage="./test mutants [OPTION...], see ./test mutants --help")
    parser.add_argument("--build", type=Path)
    parser.add_argument("--report", type=Path)
    parser.add_argument("--targets", action="store_true")
    parser.add_argument("--folder", action="append", choices=NAMES)
    parser.add_argument("--file", action="append")
    parser.add_argument("--id", action="append")
    parser.add_argument("--count", type=int, default=COUNT)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--survivors", action="store_true")
    parser.add_argument("--list", action="store_true")
    arguments = parser.parse_args(words)
    if arguments.count < 1 or arguments.jobs < 1:
        parser.error("--count and --jobs need a number above 0")
    arguments.id = arguments.id or []
    arguments.file = (arguments.file or []) + [each.split(":")[0] for each in arguments.id]
    for path in arguments.file:
        if folder_of(path) is None:
            parser.error(f"{path} is no source of {', '.join(folder.path for folder in FOLDERS)}")
    return arguments


def folders_of(arguments):
    if arguments.file:
        return list(dict.fromkeys(folder_of(path) for path in arguments.file))
    return named(arguments.folder or NAMES)


def chosen(folder, arguments, build):
    """The texts of a folder's files, and the changes to try, in their order."""
    texts = texts_of(folder)
    changes = changes_in({path: text for path, text in texts.items() if not arguments.file or path in arguments.file}, build)
    if arguments.id:
        return texts, [change for change in changes if change.id in arguments.id]
    return texts, drawn(changes, arguments.seed, folder.name)


def write(folder, reports, outdated, seed):
    folder.mkdir(parents=True, exist_ok=True)
    text = report.text_of(reports, outdated)
    (folder / "mutants.txt").write_text(f"{text}{report.closing_line(reports, outdated)}\n", encoding="utf-8")
    data = json.dumps(report.data_of(reports, outdated, seed), indent=2, ensure_ascii=False)
    (folder / "mutants.json").write_text(data + "\n", encoding="utf-8")
    return text


def main(words):
    arguments = arguments_of(words)
    folders = folders_of(arguments)
    if arguments.targets:
        print("\n".join(dict.fromkeys(program for folder in folders for program in folder.tests)))
        return 0
    build = Build(arguments.build)
    run = Run(build, arguments.build / "mutants", arguments.jobs, arguments.survivors)
    run.check_accepted()
    reports, unknown = [], set(arguments.id)
    for folder in folders:
        texts, changes = chosen(folder, arguments, build)
        unknown -= {change.id for change in changes}
        if arguments.list:
            print("\n".join(change.id for change in changes))
        elif not changes:
            print(f"{folder.name}: there is nothing to change", file=sys.stderr)
            return 2
        elif unknown and folder == folders[-1]:
            print(f"no such mistake: {' '.join(sorted(unknown))}", file=sys.stderr)
            return 2
        else:
            least = folder.least if not arguments.file else 100
            reports.append(run.folder(folder, texts, changes, len(changes) if arguments.id else arguments.count, least))
    if arguments.list:
        return 0
    outdated = run.outdated()
    print(write(arguments.report, reports, outdated, arguments.seed), end="")
    print(report.closing_line(reports, outdated))
    return 0 if report.is_good(reports, outdated) else 1


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except Failure as failure:
        sys.exit(str(failure))
    except KeyboardInterrupt:
        sys.exit("interrupted; the next run goes on here")
