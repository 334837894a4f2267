#!/usr/bin/env python3
"""Runs the benchmark programs and creates tables, plots and the record of their results; see script/bench."""

import concurrent.futures
import os
import pathlib
import platform
import re
import shutil
import subprocess
import sys
import tempfile
import typing

RECORD = pathlib.Path('tests/benchmarks/counts.tsv')
TARGETS = pathlib.Path('tests/benchmarks/targets.tsv')
PAGE = pathlib.Path('docs/performance.md')
BUILD = pathlib.Path('build/bench').absolute()
ALLOWED_GROWTH = 1.02
SUBJECT = 'MiscTools'
# The counted size; operations without sizes are always counted.
COUNTED_SIZES = (0, 1000, 1024 * 1024)


class Row(typing.NamedTuple):
    """A row of a benchmark: an operation by one contender."""
    program: str
    function: str
    contender: str
    size: int
    unit: str

    @staticmethod
    def parse(program, function, tag):
        contender, size, unit = re.fullmatch(r'(.*?)(?:, (\d+) (\w+))?', tag).groups()
        return Row(program, function, contender, int(size or 0), unit or '')

    def argument(self):
        """The argument that selects the row."""
        size = f', {self.size} {self.unit}' if self.unit else ''
        return f'{self.function}:{self.contender}{size}'

    def operation(self):
        if self.unit in ('', 'calls'):
            return self.function
        if self.unit != 'bytes':
            return f'{self.function}, {self.size:,} {self.unit}'
        size = f'{self.size >> 20} MiB' if self.size >= 1 << 20 else f'{self.size >> 10} KiB'
        return f'{self.function}, {size}'

    def calls(self):
        return self.size if self.unit == 'calls' else 1


def run(command, **options):
    """Returns the output of a command; exits if the command fails."""
    result = subprocess.run([str(argument) for argument in command], stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, text=True, check=False, **options)
    if result.returncode != 0:
        sys.exit(f'{result.stdout}\nscript/bench: exit code {result.returncode}: {command}')
    return result.stdout


def readable_time(nanoseconds):
    factor, unit = next(each for each in ((1e9, 's'), (1e6, 'ms'), (1e3, 'µs'), (0, 'ns'))
                        if nanoseconds >= each[0])
    return f'{nanoseconds / (factor or 1):#.3g}'.rstrip('.') + f' {unit}'


def readable_count(count):
    return '–' if count is None else f'{count:,.1f}'.removesuffix('.0')


def markdown(table):
    """Formats a table whose first row is the header."""
    widths = [max(map(len, column)) for column in zip(*table)]
    lines = ['| ' + ' | '.join(map(str.ljust, row, widths)) + ' |\n' for row in table]
    lines.insert(1, '|' + ''.join('-' * (width + 2) + '|' for width in widths) + '\n')
    return ''.join(lines)


def read_numbers(path):
    """Reads lines of three names and a number."""
    lines = [line.split('\t') for line in path.read_text(encoding='utf-8').splitlines() if line[0] != '#']
    return {tuple(line[:3]): float(line[3]) for line in lines}


def target_cells(value, target):
    if target is None:
        return ['', '']
    # The resolution of the clock.
    tolerance = 1.03 if target == 1 else 1
    return [f'≤ {target:,g}', 'yes' if value <= target * tolerance else '**no**']


def measure_times(programs, is_quick, directory):
    """Nanoseconds per call, by row."""
    times = {}
    for program in programs:
        if program == 'LibraryFile':
            continue
        print(f'script/bench: {program}', flush=True)
        run([BUILD / f'bin/tst_bench_{program}', '-median', '1' if is_quick else '5',
             '-o', 'times.csv,csv', '-o', '-,txt'],
            cwd=directory, env={**os.environ, 'TMPDIR': str(directory)})
        for function, tag, value in re.findall(r'^"(\w+)","(.*)","WalltimeMilliseconds",([^,]+)',
                                               (directory / 'times.csv').read_text(), re.MULTILINE):
            row = Row.parse(program, function, tag)
            times[row] = float(value) * 1e6 / row.calls()
    return times


def times_table(times, targets):
    """The two largest sizes of each operation, compared with peers and with a smaller size with a target."""
    table = [['class', 'operation', SUBJECT, 'peer', 'takes', 'ratio', 'target', 'met']]
    subjects = {row: time for row, time in times.items() if row.contender == SUBJECT}
    by_operation = {(row.program, row.operation()): time for row, time in subjects.items()}
    for subject, time in subjects.items():
        if subject.size not in sorted(row.size for row in subjects if row[:2] == subject[:2])[-2:]:
            continue
        name = (subject.program, subject.operation())
        peers = {row.contender: value for row, value in times.items()
                 if row._replace(contender=SUBJECT) == subject != row}
        peers.update((peer, by_operation[subject.program, peer]) for *operation, peer in targets
                     if tuple(operation) == name and (subject.program, peer) in by_operation)
        for peer, value in peers.items():
            ratio = time / value
            table.append([*name, readable_time(time), peer, readable_time(value), f'{ratio:.2f}',
                          *target_cells(ratio, targets.pop((*name, peer), None))])
        if not peers:
            table.append([*name, readable_time(time), '', '', '', '', ''])
    return table


def plot(times):
    """Plots time against size for each operation with at least three sizes."""
    plots = {}
    for row, time in times.items():
        contenders = plots.setdefault((row.function, row.unit), {})
        contenders.setdefault(row.contender, []).append(f'{row.size} {time}')
    for (function, unit), contenders in plots.items():
        if len(contenders[SUBJECT]) < 3:
            continue
        data = [f'$points{number} << end\n' + '\n'.join(points) + '\nend'
                for number, points in enumerate(contenders.values())]
        curves = [f'$points{number} with linespoints linewidth {1 if number else 3} title "{contender}"'
                  for number, contender in enumerate(contenders)]
        run(['gnuplot', 'tests/benchmarks/plot.gnuplot', '-'], input='\n'.join([
            f'set output "docs/performance-{function}.svg"', f'set title "{function}" noenhanced',
            f'set xlabel "{unit}"', *data, 'plot ' + ', '.join(curves)]) + '\n')


class Counter:
    """Counts with copies of the programs and the library, whose paths always have the same length."""

    def __init__(self, directory):
        self.directory = directory
        for file in [*BUILD.glob('bin/*bench*'), *BUILD.glob('lib/*.so*')]:
            shutil.copy(file, directory, follow_symlinks=False)
        # Counts depend on the seed of hash tables and on lazy binding.
        self.environment = {
            'PATH': os.environ['PATH'], 'HOME': '/', 'LC_ALL': 'C.UTF-8', 'TMPDIR': str(directory),
            'LD_LIBRARY_PATH': str(directory), 'LD_BIND_NOW': '1', 'QT_HASH_SEED': '0'}

    def run(self, *command, directory=None, **changes):
        return run(command, cwd=directory or self.directory, env={**self.environment, **changes})

    def count(self, program):
        """Counts per call, by program, operation and measure."""
        if program == 'LibraryFile':
            return self.count_library()
        path = self.directory / f'tst_bench_{program}'
        counts = {}
        for function, tag in re.findall(r'^\w+ (\w+) (.*)$', self.run(path, '-datatags'), re.MULTILINE):
            row = Row.parse(program, function, tag)
            if row.contender == SUBJECT and row.size in COUNTED_SIZES:
                name = (program, row.operation())
                counts[(*name, 'instructions')] = self.instructions(path, row) / row.calls()
                counts[(*name, 'system calls')] = self.system_calls(path, row) / row.calls()
                if row.unit in ('bytes', 'files'):
                    counts[(*name, 'peak heap, KiB')] = self.peak_heap(path, row)
        return counts

    def instructions(self, path, row):
        # Qt Test lists the files next to its output, which affects its heap and the cost of allocations.
        directory = self.directory / f'{row.program}-{row.function}'
        directory.mkdir()
        self.run(path, '-callgrind', '-o', 'count.csv,csv', '-o', '-,txt', row.argument(),
                 directory=directory)
        return float(re.search('"InstructionReads",([^,]+)', (directory / 'count.csv').read_text())[1])

    def system_calls(self, path, row):
        """System calls except those for memory management."""
        log = self.directory / f'{row.program}.strace'
        lines = []
        for iterations in (1, 2):
            self.run('strace', '--trace=!%memory', '--signal=none', f'--output={log}', path,
                     '-iterations', iterations, row.argument())
            lines.append(log.read_bytes().count(b'\n'))
        # Qt Test runs the function twice; the first run is the warm-up.
        return (lines[1] - lines[0]) / 2

    def peak_heap(self, path, row):
        """The peak of the entire program with one call."""
        output = self.run('valgrind', '--tool=dhat', '--dhat-out-file=/dev/null', path, '-iterations', 1,
                          row.argument())
        return float(re.search(r'At t-gmax: ([\d,]+) bytes', output)[1].replace(',', '')) / 1024

    def count_library(self):
        """The cost of the library at program start, and the size of its file."""
        instructions = []
        for program in ('alone', 'with-library'):
            output = self.directory / f'{program}.callgrind'
            self.run('valgrind', '--tool=callgrind', f'--callgrind-out-file={output}',
                     self.directory / f'bench-start-{program}', LD_BIND_NOW='')
            instructions.append(float(re.search(r'\ntotals: (\d+)', output.read_text())[1]))
        stripped = self.directory / 'stripped'
        run(['strip', '-o', stripped, self.directory / 'libMiscTools.so.1'])
        return {('LibraryFile', 'start of a program', 'instructions'): instructions[1] - instructions[0],
                ('LibraryFile', 'stripped file', 'bytes'): float(stripped.stat().st_size)}


def count(programs, directory):
    """Counts in parallel, because counts do not depend on the load of the machine."""
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = pool.map(Counter(directory).count, programs)
        return {key: round(value, 1) for result in results for key, value in result.items()}


def tools():
    cache = (BUILD / 'CMakeCache.txt').read_text()
    compiler = re.search(r'\nCMAKE_CXX_COMPILER:\w+=(.*)\n', cache)[1]
    return ['compiler: ' + run([compiler, '--version']).splitlines()[0],
            'Qt: ' + run(['pkg-config', '--modversion', 'Qt5Core']).strip()]


def record(counts):
    lines = ['# Cost of operations per call. Recorded by: script/bench --counts --record',
             *(f'# {tool}' for tool in tools()),
             *('\t'.join((*key, f'{value:.1f}'.removesuffix('.0'))) for key, value in counts.items())]
    RECORD.write_text('\n'.join(lines) + '\n', encoding='utf-8')
    print(f'script/bench: {len(counts)} counts are now in {RECORD}')


def compare(counts, programs):
    """Returns the number of counts that grew, are not recorded, or were not counted."""
    recorded = {key: value for key, value in read_numbers(RECORD).items() if key[0] in programs}
    table = [['class', 'operation', 'measure', 'recorded', 'now', 'change', '']]
    failures = 0
    for key in {**recorded, **counts}:
        before, now = recorded.get(key), counts.get(key)
        verdict = ''
        if before is None or now is None:
            verdict = 'NOT RECORDED' if before is None else 'NOT COUNTED'
        elif now > before * ALLOWED_GROWTH:
            verdict = 'GREW'
        failures += bool(verdict)
        change = f'{(now / before - 1) * 100:+.1f} %' if before and now is not None else ''
        table.append([*key, readable_count(before), readable_count(now), change, verdict])
    print(markdown(table))
    if any(f'# {tool}\n' not in RECORD.read_text(encoding='utf-8') for tool in tools()):
        print('The counts were recorded with other tools, which changes them; the current tools are', tools())
    print(f'script/bench: {len(counts)} counts; {failures} grew or do not match the record')
    return failures


def update_page(times, counts):
    targets = read_numbers(TARGETS)
    processor = re.search(r'model name\s*: (.*)|$', pathlib.Path('/proc/cpuinfo').read_text())[1]
    machine = [f'processor: {processor} ({platform.machine()}), {os.cpu_count()} cores',
               'system: ' + platform.freedesktop_os_release()['PRETTY_NAME'], *tools()]
    parts = {
        'machine': ''.join(f'- {line}\n' for line in machine),
        'times': markdown(times_table(times, targets)),
        'counts': markdown([['class', 'operation', 'measure', 'per call', 'target', 'met'], *(
            [*key, readable_count(value), *target_cells(value, targets.pop(key, None))]
            for key, value in counts.items())])}
    if targets:
        sys.exit(f'{TARGETS} has targets for operations that are not measured: {list(targets)}')
    text = PAGE.read_text(encoding='utf-8')
    for name, part in parts.items():
        text = re.sub(f'(<!-- begin {name} -->\n).*(<!-- end {name} -->)',
                      lambda match, part=part: match[1] + part + match[2], text, flags=re.DOTALL)
    PAGE.write_text(text, encoding='utf-8')


def main():
    options = [argument for argument in sys.argv[1:] if argument.startswith('--')]
    names = [argument for argument in sys.argv[1:] if argument not in options]
    # In memory if possible; otherwise the benchmarks would measure the disk.
    memory = '/dev/shm' if os.access('/dev/shm', os.W_OK) else None
    with tempfile.TemporaryDirectory(prefix='misctools-bench.', dir=memory) as directory:
        directory = pathlib.Path(directory)
        if '--record' in options:
            record(count(names, directory))
        elif '--counts' in options:
            sys.exit(compare(count(names, directory), names) > 0)
        else:
            times = measure_times(names, '--quick' in options, directory)
            print(markdown(times_table(times, read_numbers(TARGETS))))
            if '--update-docs' in options:
                plot(times)
                update_page(times, count(names, directory))


main()
