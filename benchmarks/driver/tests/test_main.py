import contextlib
import importlib.util
import io
import json
from pathlib import Path
from unittest import mock

from programs import FakePrograms
from table import Table

description = importlib.util.spec_from_file_location("driver", Path(__file__).resolve().parents[1] / "__main__.py")
driver = importlib.util.module_from_spec(description)
description.loader.exec_module(driver)


def table_with(value, limit=10):
    table = Table("key", "Title", ["count", "limit"])
    table.judge("row", value, limit)
    return table


class DriverMain(FakePrograms):
    def run_main(self, tables, *words):
        output = io.StringIO()
        with mock.patch.object(driver, "tables_of", side_effect=lambda *question: iter(tables)) as asked, \
                mock.patch.object(driver.host, "description", return_value={"processor": "none"}), \
                contextlib.redirect_stdout(output):
            code = driver.main(["--build", str(self.folder), *words])
        self.parts = [call.args[0] for call in asked.call_args_list]
        return code, output.getvalue()

    def test_all_within_their_limits_is_success(self):
        code, _ = self.run_main([table_with(10)], "client")

        self.assertEqual(0, code)

    def test_a_row_beyond_its_limit_is_a_failure_that_names_it(self):
        code, output = self.run_main([table_with(11)], "client")

        self.assertEqual(1, code)
        self.assertIn("Title: row: 11 is more than 10", output)

    def test_without_parts_all_are_measured(self):
        self.run_main([])

        self.assertEqual(list(driver.PARTS), self.parts)

    def test_options_of_google_benchmark_choose_the_foundation(self):
        self.run_main([], "--benchmark_filter=text")

        self.assertEqual(["foundation"], self.parts)

    def test_an_unknown_part_is_a_mistake(self):
        with self.assertRaises(SystemExit) as ended, contextlib.redirect_stderr(io.StringIO()):
            self.run_main([], "nothing")

        self.assertEqual(2, ended.exception.code)

    def test_an_unknown_option_is_a_mistake(self):
        with self.assertRaises(SystemExit), contextlib.redirect_stderr(io.StringIO()):
            self.run_main([], "--quick")

    def test_the_documentation_is_of_all_parts(self):
        with self.assertRaises(SystemExit), contextlib.redirect_stderr(io.StringIO()):
            self.run_main([], "--update-docs", "client")

    def test_prints_the_cost_of_one_operation(self):
        output = io.StringIO()
        with mock.patch.object(driver.library, "cost_of", return_value=mock.Mock(**{"text.return_value": "own=5"})) as cost, \
                contextlib.redirect_stdout(output):
            code = driver.main(["--build", str(self.folder), "cost", "direct", "event", "cards:5"])

        self.assertEqual((0, "own=5\n"), (code, output.getvalue()))
        cost.assert_called_once_with(self.folder / "bin", "direct", "event cards:5")

    def test_writes_text_and_data(self):
        self.run_main([table_with(11)], "client")

        results = self.folder / "results"
        data = json.loads((results / "bench.json").read_text())
        self.assertEqual({"processor": "none"}, data["host"])
        self.assertTrue(data["tables"][0]["rows"][0]["isBeyond"])
        self.assertIn(table_with(11).text(), (results / "bench.txt").read_text())


class DriverUpdateDocs(FakePrograms):
    def update(self, page):
        (self.folder / "performance.md").write_text(page)
        results = self.folder / "results"
        results.mkdir()
        (results / "key.svg").write_text("<svg/>")
        (results / "old.svg").write_text("<svg/>")
        driver.update_docs(self.folder, results, {"processor": "none"}, [table_with(3)])
        return (self.folder / "performance.md").read_text()

    def test_puts_tables_and_plots_into_the_documentation(self):
        page = self.update("<!-- bench: host -->\n```\n```\n<!-- bench: key -->\n```\n```\n")

        self.assertIn(table_with(3).text(), page)
        self.assertEqual(["key.svg"], [each.name for each in (self.folder / "performance").iterdir()])

    def test_a_table_without_a_block_is_an_error(self):
        with self.assertRaisesRegex(RuntimeError, "no block for host, key"):
            self.update("nothing")
