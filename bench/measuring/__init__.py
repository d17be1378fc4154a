"""Measures whole processes: inputs, the programs beside which the tool runs, counting, reports."""
