import os
from unittest import mock

import library
import plots
from programs import FakePrograms


class PlotsDraw(FakePrograms):
    def test_hands_data_and_names_to_gnuplot(self):
        self.program("gnuplot", f"cat >{self.folder}/script")
        growth = library.Growth("cards", "An event", "cards", "event", "cards", (1,))

        with mock.patch.dict(os.environ, {"PATH": f"{self.folder}:{os.environ['PATH']}"}):
            plots.draw(growth, [(5, 1.5, 2.5, 100.0, 200.0)], self.folder)

        script = (self.folder / "script").read_text()
        self.assertIn(f'set output "{self.folder}/growth-cards.svg"', script)
        self.assertIn('title "An event"', script)
        self.assertEqual("5 1.5 2.5 100 200\n", (self.folder / "growth-cards.dat").read_text())
