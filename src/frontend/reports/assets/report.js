(function () {
  'use strict';
  const data = JSON.parse(document.getElementById('data').textContent);
  const charts = [];
  const colour = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();
  const readable = (x) => (x === null || x === undefined || !isFinite(x)) ? '–' : String(Number(Number(x).toPrecision(5)));
  const percent = (share) => readable(100 * share) + ' %';
  const line = (n) => colour('--c' + (n % 8 + 1));
  const short = (text) => text.length > 28 ? text.slice(0, 27) + '…' : text;

  function axis(title, more) {
    return Object.assign({
      title: { display: title !== '', text: title, color: colour('--soft') },
      grid: { color: colour('--line') }, border: { color: colour('--line') },
      ticks: { color: colour('--soft'), maxRotation: 0, autoSkipPadding: 12 }
    }, more || {});
  }
  // As many digits as it takes to tell one tick from the next, however large the numbers are.
  function tickLabel(value, index, ticks) {
    if (value === 0) { return '0'; }
    const step = ticks.length > 1 ? Math.abs(ticks[1].value - ticks[0].value) : Math.abs(value);
    const top = Math.max(...ticks.map((tick) => Math.abs(tick.value)));
    const digits = Math.ceil(Math.log10(top / step) + 1e-9) + 1;
    if ((top >= 1e12 && digits < 8) || top < 1e-5) { return value.toExponential(Math.min(Math.max(digits - 1, 0), 16)); }
    let decimals = 0;
    while (decimals < 15 && Math.abs(step * 10 ** decimals - Math.round(step * 10 ** decimals)) > 1e-6) { ++decimals; }
    return value.toLocaleString('en', { minimumFractionDigits: decimals, maximumFractionDigits: decimals });
  }
  const numeric = (title, more, label) => {
    const made = axis(title, Object.assign({ type: 'linear' }, more || {}));
    made.ticks.callback = label || tickLabel;
    made.ticks.includeBounds = false;
    return made;
  };

  function draw(id, config) {
    const canvas = document.getElementById(id);
    if (!canvas) { return; }
    config.options = Object.assign({ animation: false, responsive: true, maintainAspectRatio: false }, config.options);
    config.options.plugins = Object.assign({
      legend: { position: 'bottom', labels: { color: colour('--ink'), boxWidth: 14 } }
    }, config.options.plugins || {});
    Object.keys(config.options.scales).filter((key) => key !== 'x').forEach((key) => {
      config.options.scales[key].ticks.autoSkipPadding = 2;
    });
    charts.push(new Chart(canvas, config));
    canvas.dataset.drawn = 'true';
  }

  // Bars stand over their classes; the cumulative line reaches a class's share at its upper end.
  function histogram(id, h, name) {
    const edges = h.edges, total = h.counts.reduce((a, b) => a + b, 0);
    const points = [{ x: edges[0], y: 0 }].concat(h.cumulative.map((y, i) => ({ x: edges[i + 1], y: y })));
    draw(id, {
      data: {
        datasets: [
          { type: 'line', label: 'Cumulative share', data: points, yAxisID: 'share', borderColor: colour('--c2'),
            backgroundColor: colour('--c2'), pointRadius: 0, pointHitRadius: 8, borderWidth: 2 },
          { type: 'bar', label: 'Iterations', data: h.counts.map((n, i) => ({ x: (edges[i] + edges[i + 1]) / 2, y: n })),
            backgroundColor: colour('--c1'), categoryPercentage: 1, barPercentage: 0.96 }
        ]
      },
      options: {
        interaction: { mode: 'nearest', axis: 'x', intersect: false },
        scales: {
          x: numeric(short(name), { min: edges[0], max: edges[edges.length - 1], offset: false,
            grid: { color: colour('--line'), offset: false } }),
          y: numeric('Iterations', { beginAtZero: true }),
          share: numeric('Cumulative share', { position: 'right', min: 0, max: 1, grid: { drawOnChartArea: false } }, percent)
        },
        plugins: { tooltip: { callbacks: {
          title: (items) => items[0].dataset.type === 'bar'
            ? readable(edges[items[0].dataIndex]) + ' to ' + readable(edges[items[0].dataIndex + 1]) : readable(items[0].parsed.x),
          label: (item) => item.dataset.type === 'bar'
            ? item.parsed.y + ' iterations (' + percent(item.parsed.y / total) + ')' : percent(item.parsed.y) + ' at or below'
        } } }
      }
    });
  }

  function bars(id, names, series, xAxis, tip, plugins) {
    const canvas = document.getElementById(id);
    if (canvas) { canvas.parentNode.style.minHeight = (6 + 1.1 * names.length) + 'rem'; }
    const categories = axis('', { stacked: true });
    Object.assign(categories.ticks, { autoSkip: false, font: { size: names.length > 10 ? 10 : 12 } });
    draw(id, {
      type: 'bar',
      data: { labels: names.map(short), datasets: series.map((s) => Object.assign({ maxBarThickness: 40 }, s)) },
      options: {
        indexAxis: 'y',
        scales: { x: xAxis, y: categories },
        plugins: { legend: { display: series.length > 1, position: 'bottom', labels: { color: colour('--ink'), boxWidth: 14 } },
          tooltip: { callbacks: { title: (items) => names[items[0].dataIndex], label: tip } } }
      },
      plugins: plugins || []
    });
  }

  // A bar covers the values that the result took, be they on one side of the base or on both.
  function tornado(id, t) {
    const inputs = t.inputs.slice(0, 15), base = t.base;
    const known = (i) => i.low !== null && i.high !== null && base !== null;
    const below = inputs.map((i) => known(i) && i.low < base ? [i.low, Math.min(i.high, base)] : null);
    const above = inputs.map((i) => known(i) && i.high > base ? [Math.max(i.low, base), i.high] : null);
    const side = (ranges, label, name) => ({ label: label, backgroundColor: colour(name), grouped: false, data: ranges });
    const atBase = { id: 'base', afterDatasetsDraw: (chart) => {
      if (base === null) { return; }
      const area = chart.chartArea, x = chart.scales.x.getPixelForValue(base);
      chart.ctx.save();
      chart.ctx.strokeStyle = colour('--ink');
      chart.ctx.beginPath();
      chart.ctx.moveTo(x, area.top);
      chart.ctx.lineTo(x, area.bottom);
      chart.ctx.stroke();
      chart.ctx.restore();
    } };
    const room = base === null ? {} : { suggestedMin: base, suggestedMax: base };
    bars(id, inputs.map((i) => i.name), [side(below, 'Below the base', '--c2'), side(above, 'Above the base', '--c1')],
      numeric(short(t.result), Object.assign({ beginAtZero: false }, room)), (item) => {
        const input = inputs[item.dataIndex];
        return readable(input.low) + ' to ' + readable(input.high) + ', swing ' + readable(input.swing);
      }, [atBase]);
  }

  function lines(id, labels, series, xTitle, yTitle, linear) {
    draw(id, {
      type: 'line',
      data: { labels: labels, datasets: series },
      options: {
        interaction: { mode: 'nearest', intersect: false },
        scales: { x: linear ? numeric(xTitle, { min: 0 }) : axis(xTitle), y: numeric(yTitle) },
        plugins: { tooltip: { callbacks: { label: (item) => item.dataset.label + ': ' + readable(item.parsed.y) } } }
      }
    });
  }

  function spider(id, t) {
    lines(id, t.points, t.inputs.slice(0, 8).map((input, n) => ({
      label: short(input.name), data: input.values, borderColor: line(n), backgroundColor: line(n), pointRadius: 3, borderWidth: 2
    })), 'Position of the input', short(t.result), false);
  }

  function trace(id, t) {
    const points = (values) => values.map((y, i) => ({ x: t.iterations[i], y: y }));
    const bound = (label, values, fill) => ({ label: label, data: points(values), borderColor: colour('--c8'),
      backgroundColor: colour('--c8') + '22', borderDash: [5, 4], pointRadius: 0, borderWidth: 1.5, fill: fill });
    lines(id, undefined, [
      { label: 'Mean', data: points(t.mean), borderColor: colour('--c1'), backgroundColor: colour('--c1'), pointRadius: 0, borderWidth: 2 },
      bound('95 % lower', t.lower, false), bound('95 % upper', t.upper, '-1')
    ], 'Iterations', 'Running mean', true);
  }

  function scatter(id, s, result) {
    draw(id, {
      type: 'scatter',
      data: { datasets: [{ label: s.input, data: s.x.map((x, i) => ({ x: x, y: s.y[i] })), pointRadius: 2,
        backgroundColor: colour('--c1') + '99', borderWidth: 0 }] },
      options: {
        scales: { x: numeric(short(s.input)), y: numeric(short(result)) },
        plugins: { legend: { display: false }, tooltip: { callbacks: {
          label: (item) => readable(item.parsed.x) + ' → ' + readable(item.parsed.y) } } }
      }
    });
  }

  function drawAll() {
    charts.splice(0).forEach((chart) => chart.destroy());
    data.results.forEach((r, i) => {
      if (r.histogram) { histogram('histogram-' + i, r.histogram, r.name); }
      if (r.tornado) { tornado('tornado-' + i, r.tornado); spider('spider-' + i, r.tornado); }
      if (r.sensitivity) {
        const inputs = r.sensitivity.slice(0, 15);
        bars('sensitivity-' + i, inputs.map((s) => s.name), [{ label: 'Contribution, %',
          data: inputs.map((s) => s.contribution === null ? null : 100 * s.contribution),
          backgroundColor: inputs.map((s) => colour(s.contribution < 0 ? '--c2' : '--c1')) }],
          numeric('Share of the explained variation, % (sign: direction)'),
          (item) => readable(item.raw) + ' %, correlation ' + readable(inputs[item.dataIndex].correlation));
      }
      if (r.trace) { trace('trace-' + i, r.trace); }
      if (r.scatter) { scatter('scatter-' + i, r.scatter, r.name); }
    });
    document.documentElement.dataset.charts = String(charts.length);
  }

  drawAll();
  matchMedia('(prefers-color-scheme: dark)').addEventListener('change', drawAll);
  const print = matchMedia('print');
  print.addEventListener('change', drawAll);
}());
