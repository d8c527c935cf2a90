.PHONY: setup-programs try-programs
setup-programs:
	@sh tools/setup.sh programs

# Drawings and examples/ in Inkscape, FreeCAD, OpenSCAD and LibreCAD themselves; one that is missing is a failure.
try-programs: setup setup-programs
	@cmake $(RELEASE_BUILD) -DKERNO_BENCH=OFF >/dev/null
	@cmake --build build/release -j $(JOBS) --target kerno
	@failed=0; \
	$(PYTHON) tools/check_programs.py --all build/release/src/cli/kerno || failed=1; \
	$(PYTHON) tools/try_examples.py build/release/src/cli/kerno || failed=1; \
	exit $$failed
