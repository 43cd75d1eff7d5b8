"use strict";

const { cycles, tick, piece, watched, series } =
    JSON.parse(document.getElementById("data").textContent);

const COLOURS = 8;
const LANE = 2; // from one BOOL to the next, whose values are 0 and 1
const NAME_GAP = 4; // pixels between the points of a lane and its name
const PIXELS_OF_LANE = 40;
const PIXELS_OF_AXIS = 30;
const HEIGHT = 240;
const WHOLE = [0.5, cycles + 0.5];
const MOST_MARKED = 60; // points of a series that are drawn as such
const LEAST_WINDOW = 2;

const element = (id) => document.getElementById(id);

function make(tag, parent, properties = {}) {
    const made = Object.assign(document.createElement(tag), properties);
    parent.append(made);
    return made;
}

const count = (number, what) => `${number.toLocaleString("en")} ${what}${number === 1 ? "" : "s"}`;

// ------------------------------------------------------------------------------------------------
// Values
// ------------------------------------------------------------------------------------------------

const isTruth = ({ type }) => type === "BOOL";
const isReal = ({ type }) => type === "REAL" || type === "LREAL";

// The index of the point of a series at a cycle or, of those that are left out, the one before.
function indexAt({ points }, cycle) {
    let low = 0;
    let high = points.length - 1;
    while (low < high) {
        const middle = Math.ceil((low + high) / 2);
        if (points[middle][0] <= cycle) low = middle;
        else high = middle - 1;
    }
    return low;
}

// The value at a cycle, or the least and the greatest around one that was left out.
function valuesAt(each, cycle) {
    const [at, value] = each.points[indexAt(each, cycle)];
    if (piece === 1 || at === cycle) return [value];
    const first = cycle - ((cycle - 1) % piece);
    const points = each.points.slice(indexAt(each, first), indexAt(each, first + piece - 1) + 1);
    const numbers = points.map(([, number]) => number).sort((one, other) => one - other);
    return [...new Set([numbers[0], numbers.at(-1)])];
}

function textOf(each, value) {
    if (value === null) return "no number";
    if (isTruth(each)) return value ? "TRUE" : "FALSE";
    const text = String(value);
    return isReal(each) && /^-?\d+$/.test(text) ? `${text}.0` : text;
}

const isConstant = ({ points }) => points.every(([, value]) => value === points[0][1]);

const peakOf = ({ points }) => Math.max(0, ...points.map(([, value]) => Math.abs(value ?? 0)));

// ------------------------------------------------------------------------------------------------
// Panels: numbers with those of like size, BOOLs in lanes
// ------------------------------------------------------------------------------------------------

const RATIO = 10; // of the largest numbers that share a diagram

function groupsOf(numbers) {
    const sorted = numbers.map((each) => ({ each, peak: peakOf(each) }))
        .sort((one, other) => one.peak - other.peak);
    const groups = [];
    let least = 0;
    for (const { each, peak } of sorted) {
        if (groups.length === 0 || (peak > RATIO * least && least > 0)) {
            groups.push([]);
            least = peak;
        }
        least ||= peak;
        groups.at(-1).push(each);
    }
    return groups.map((group) => series.filter((each) => group.includes(each)));
}

// The rows of a diagram: a cycle and the values there, null where a series has no point of its
// own, NaN where its value is no number.
function rowsOf(group, heightOf) {
    const rows = new Map();
    group.forEach((each, index) => {
        for (const [cycle, value] of each.points) {
            if (!rows.has(cycle)) rows.set(cycle, new Array(group.length).fill(null));
            rows.get(cycle)[index] = value === null ? NaN : heightOf(value, index);
        }
    });
    return [...rows].sort(([one], [other]) => one - other)
        .map(([cycle, values]) => [cycle, ...values]);
}

const look = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();
const colourOf = (index) => look(`--series-${(index % COLOURS) + 1}`);
const isDashed = (index) => index >= COLOURS;

const lookOf = (group) => ({
    colors: group.map((_, index) => colourOf(index)),
    gridLineColor: look("--grid"),
    axisLineColor: look("--edge"),
});

const panels = []; // { group, graph, mark, outputs }
let shown = WHOLE;
let isShowing = false;

// A window within the run. From the first point to the last is the whole of it.
function windowOf([from, to]) {
    if (to - from >= cycles - 1) return WHOLE;
    const width = Math.max(to - from, Math.min(LEAST_WINDOW, cycles));
    const begin = Math.min(Math.max(from, WHOLE[0]), WHOLE[1] - width);
    return [begin, begin + width];
}

// All diagrams show the same cycles.
function show(range) {
    if (isShowing) return;
    shown = windowOf(range);
    isShowing = true;
    for (const { graph } of panels) graph.updateOptions({ dateWindow: shown });
    isShowing = false;
    placeMarks();
}

function optionsOf(group, height) {
    const isMarked = group.every(({ points }) => points.length <= MOST_MARKED);
    return {
        ...lookOf(group),
        labels: ["cycle", ...group.map(({ name }) => name)],
        series: Object.fromEntries(group.map((each, index) => [each.name, {
            stepPlot: !isReal(each),
            strokePattern: isDashed(index) ? [7, 3] : null,
        }])),
        dateWindow: shown,
        height,
        legend: "never",
        showLabelsOnHighlight: false,
        highlightCircleSize: 0,
        connectSeparatedPoints: true,
        drawPoints: isMarked,
        pointSize: 2,
        strokeWidth: 1.6,
        axes: {
            x: { axisLabelFormatter: (cycle) => (Number.isInteger(cycle) ? String(cycle) : "") },
            y: { axisLabelWidth: 56 },
        },
        drawCallback: (graph, isFirst) => {
            const range = graph.xAxisRange();
            if (!isFirst && range.some((at, index) => at !== shown[index])) show(range);
        },
    };
}

// Above each lane the name of its variable.
function drawNames(group) {
    return (canvas, area, graph) => {
        canvas.font = "12px system-ui, sans-serif";
        canvas.textBaseline = "bottom";
        canvas.fillStyle = look("--quiet");
        group.forEach(({ name }, index) => {
            const top = graph.toDomYCoord((group.length - 1 - index) * LANE + 1);
            canvas.fillText(name, area.x + 4, top - NAME_GAP);
        });
    };
}

const laneOptions = (group) => ({
    valueRange: [-0.2, group.length * LANE],
    underlayCallback: drawNames(group),
    axes: {
        ...optionsOf(group).axes,
        y: { axisLabelWidth: 56, drawGrid: false, ticker: () => [] },
    },
});

function addLegend(panel, group) {
    const list = make("ul", panel, { className: "legend" });
    return group.map((each, index) => {
        const label = make("label", make("li", list));
        const box = make("input", label, { type: "checkbox", checked: true });
        label.append(" ");
        const line = make("span", label, { className: isDashed(index) ? "line dashed" : "line" });
        line.style.color = `var(--series-${(index % COLOURS) + 1})`;
        label.append(` ${each.name} `);
        return { box, output: make("output", label.parentElement) };
    });
}

function addPanel(group, areLanes) {
    const panel = make("section", element("panels"), { className: "panel" });
    panel.setAttribute("aria-label", group.map(({ name }) => name).join(", "));
    const entries = addLegend(panel, group);
    const plot = make("div", panel, { className: "plot" });
    const height = areLanes ? group.length * PIXELS_OF_LANE + PIXELS_OF_AXIS : HEIGHT;
    const options = { ...optionsOf(group, height), ...(areLanes ? laneOptions(group) : {}) };
    const lane = (value, index) => value + (group.length - 1 - index) * LANE;
    const rows = rowsOf(group, areLanes ? lane : (value) => value);
    const diagram = make("div", plot, { className: "diagram" });
    const graph = new Dygraph(diagram, rows, options);
    const mark = make("div", plot, { className: "mark" });
    entries.forEach(({ box }, index) => {
        box.addEventListener("change", () => graph.setVisibility(index, box.checked));
    });
    plot.addEventListener("mousemove", (event) => {
        const left = plot.getBoundingClientRect().left;
        setCursor(graph.toDataXCoord(event.clientX - left));
    });
    panels.push({ group, graph, mark, outputs: entries.map(({ output }) => output) });
}

// ------------------------------------------------------------------------------------------------
// The cursor
// ------------------------------------------------------------------------------------------------

function placeMarks() {
    const cycle = Number(element("cursor").value);
    for (const { graph, mark } of panels) {
        const { y, h } = graph.getArea();
        mark.style.left = `${graph.toDomXCoord(cycle)}px`;
        mark.style.height = `${y + h}px`;
        mark.hidden = cycle < shown[0] || cycle > shown[1];
    }
}

function setCursor(at) {
    const cycle = Math.min(Math.max(Math.round(at), 1), cycles);
    element("cursor").value = cycle;
    element("cycle").textContent = cycle;
    for (const { group, outputs } of panels) {
        group.forEach((each, index) => {
            const texts = valuesAt(each, cycle).map((value) => textOf(each, value));
            outputs[index].textContent = texts.join(" … ");
        });
    }
    placeMarks();
}

// ------------------------------------------------------------------------------------------------
// Buttons, colours, paper
// ------------------------------------------------------------------------------------------------

function zoom(factor) {
    const middle = Number(element("cursor").value);
    const width = (shown[1] - shown[0]) * factor;
    show([middle - width / 2, middle + width / 2]);
}

function showWhole() {
    for (const { graph } of panels) graph.resetZoom();
    show(WHOLE);
}

function redraw() {
    for (const { group, graph } of panels) {
        graph.updateOptions(lookOf(group));
        graph.resize();
    }
    placeMarks();
}

function setPaper(isPaper) {
    document.documentElement.classList.toggle("paper", isPaper);
    redraw();
}

function describe() {
    const tail = piece > 1
        ? ` Of every ${count(piece, "cycle")} the first, least, greatest and last value is drawn.`
        : "";
    element("about").textContent = `${count(cycles, "cycle")}, ${count(tick, "tick")} each.${tail}`;
}

function describeConstants(constants) {
    const texts = constants.map((each) => `${each.name} = ${textOf(each, each.points[0][1])}`);
    element("constants").textContent = texts.length ? `Unchanged: ${texts.join(", ")}` : "";
}

function begin() {
    describe();
    if (cycles === 0) return;
    const isDrawn = (each) => watched || !isConstant(each);
    describeConstants(series.filter((each) => !isDrawn(each)));
    const drawn = series.filter(isDrawn);
    for (const group of groupsOf(drawn.filter((each) => !isTruth(each)))) addPanel(group, false);
    const truths = drawn.filter(isTruth);
    if (truths.length) addPanel(truths, true);
    element("cursor").max = cycles;
    setCursor(cycles);
}

begin();
element("cursor").addEventListener("input", ({ target }) => setCursor(Number(target.value)));
element("in").addEventListener("click", () => zoom(0.5));
element("out").addEventListener("click", () => zoom(2));
element("whole").addEventListener("click", showWhole);
window.addEventListener("resize", placeMarks);
window.addEventListener("beforeprint", () => setPaper(true));
window.addEventListener("afterprint", () => setPaper(false));
window.matchMedia("(prefers-color-scheme: dark)").addEventListener("change", redraw);
window.matchMedia("print").addEventListener("change", ({ matches }) => setPaper(matches));
