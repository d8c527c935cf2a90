.PHONY: python
# The Python package with its library beside it, in build/python (for PYTHONPATH) and as a zip.
python: setup
	@cmake $(RELEASE_BUILD) -DKERNO_BENCH=OFF >/dev/null
	@cmake --build build/release -j $(JOBS) --target kerno_shared
	@$(PYTHON) packaging/make_python_zip.py build/release/src/api/libkerno.so.1 build/python build/packages

# The package in other Pythons, with what modules each has; PYTHONS names them, by paths or as on PATH.
.PHONY: try-pythons
PYTHONS ?= python3.8 python3.9 python3.10 python3.11 python3.12 python3.13
try-pythons: python
	@cmake --build build/release -j $(JOBS) --target kerno
	@failed=0 tried=; \
	export PYTHONPATH='$(CURDIR)/python' KERNO_LIBRARY='$(CURDIR)/build/python/kerno/libkerno.so.1' \
	  FONTCONFIG_FILE='$(CURDIR)/tests/fonts.conf'; \
	for python in $(PYTHONS); do \
	  path=$$(command -v "$$python") && "$$path" -V || { echo "$$python is not here: not tried"; continue; }; \
	  path=$$(realpath -s "$$path") tried=1 folder=$$(mktemp -d); \
	  (cd "$$folder" && KERNO_LIBRARY= PYTHONPATH='$(CURDIR)/build/python' \
	    "$$path" -B -W error '$(CURDIR)/examples/python/sign.py') && \
	  "$$path" -B tests/api/bindings_test.py --bare build/release/src/cli/kerno || failed=1; \
	  rm -r "$$folder"; \
	done; [ -n "$$tried" ] || { echo "no Python was tried"; failed=1; }; exit $$failed
