.PHONY: setup-desktop try-desktop
setup-desktop:
	@sh tools/setup.sh desktop

# The window among real programs of a desktop, with pictures to be looked at; TRIALS="printing looks" takes these alone.
TRIALS ?=
try-desktop: setup setup-desktop
	@cmake $(RELEASE_BUILD) -DKERNO_BENCH=OFF >/dev/null
	@cmake --build build/release -j $(JOBS) --target kerno kerno-desktop
	@$(PYTHON) tools/try_desktop.py build/release/src/cli/kerno-desktop out/desktop $(TRIALS)
