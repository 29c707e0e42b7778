"""What an idle instance costs. Figures are of an optimised build; the fastest of a few starts counts, since others use
the machine too."""
import time

import program
from program import LANTERN
from serving import ServingTest

READY_WITHIN = 0.2  # seconds
RESIDENT_BELOW = 40 * 1024 * 1024


class Figures(ServingTest):
    def test_ready_soon_and_small_with_a_page(self):
        self.run_program("import", LANTERN)
        taken, resident = [], []
        for _ in range(5):
            start = time.monotonic()
            serving = self.serve()
            taken.append(time.monotonic() - start)
            page = serving.enter().page()
            page.receive()
            page.receive()
            serving.ask("/library/cover/1")
            resident.append(serving.resident())
            self.assertEqual(serving.stop()[0], 0)
        self.assertLess(min(taken), READY_WITHIN)
        self.assertLess(max(resident), RESIDENT_BELOW)


if __name__ == "__main__":
    program.enter_own_network()
    program.main()
