(function () {
  'use strict';
  const data = JSON.parse(document.getElementById('data').textContent);
  const charts = [];
  const colour = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();
  const readable = (x) => (x === null || x === undefined || !isFinite(x)) ? '–' : String(Number(Number(x).toPrecision(5)));
  const line = (n) => colour('--c' + (n % 8 + 1));
  const short = (text) => text.length > 28 ? text.slice(0, 27) + '…' : text;

  function axis(title, more) {
    return Object.assign({
      title: { display: title !== '', text: title, color: colour('--soft') },
      grid: { color: colour('--line') }, border: { color: colour('--line') },
      ticks: { color: colour('--soft'), maxRotation: 0, autoSkipPadding: 12 }
    }, more || {});
  }
  const numeric = (title, more) => {
    const made = axis(title, Object.assign({ type: 'linear' }, more || {}));
    made.ticks.callback = (value) => readable(value);
    return made;
  };

  function draw(id, config) {
    const canvas = document.getElementById(id);
    if (!canvas) { return; }
    config.options = Object.assign({ animation: false, responsive: true, maintainAspectRatio: false }, config.options);
    config.options.plugins = Object.assign({
      legend: { position: 'bottom', labels: { color: colour('--ink'), boxWidth: 14 } }
    }, config.options.plugins || {});
    charts.push(new Chart(canvas, config));
    canvas.dataset.drawn = 'true';
  }

  function histogram(id, h) {
    const middle = h.counts.map((_, i) => (h.edges[i] + h.edges[i + 1]) / 2);
    const total = h.counts.reduce((a, b) => a + b, 0);
    draw(id, {
      data: {
        labels: middle.map(readable),
        datasets: [
          { type: 'line', label: 'Cumulative share', data: h.cumulative, yAxisID: 'share', borderColor: colour('--c2'),
            backgroundColor: colour('--c2'), pointRadius: 0, pointHitRadius: 8, borderWidth: 2, stepped: false },
          { type: 'bar', label: 'Iterations', data: h.counts, backgroundColor: colour('--c1'), categoryPercentage: 1,
            barPercentage: 0.96 }
        ]
      },
      options: {
        interaction: { mode: 'index', intersect: false },
        scales: {
          x: axis(''), y: numeric('Iterations', { beginAtZero: true }),
          share: numeric('Cumulative share', { position: 'right', min: 0, max: 1, grid: { drawOnChartArea: false } })
        },
        plugins: { tooltip: { callbacks: {
          title: (items) => readable(h.edges[items[0].dataIndex]) + ' to ' + readable(h.edges[items[0].dataIndex + 1]),
          label: (item) => item.dataset.type === 'bar'
            ? item.raw + ' iterations (' + readable(100 * item.raw / total) + ' %)'
            : readable(100 * item.raw) + ' % at or below'
        } } }
      }
    });
  }

  function bars(id, names, series, xTitle, tip) {
    draw(id, {
      type: 'bar',
      data: { labels: names.map(short), datasets: series },
      options: {
        indexAxis: 'y',
        scales: { x: numeric(xTitle), y: axis('', { stacked: true }) },
        plugins: { legend: { display: series.length > 1, position: 'bottom', labels: { color: colour('--ink'), boxWidth: 14 } },
          tooltip: { callbacks: { title: (items) => names[items[0].dataIndex], label: tip } } }
      }
    });
  }

  function tornado(id, t) {
    const inputs = t.inputs.slice(0, 15);
    const side = (key, label, name) => ({ label: label, backgroundColor: colour(name), grouped: false,
      data: inputs.map((i) => i[key] === null || t.base === null ? null : [t.base, i[key]]) });
    bars(id, inputs.map((i) => i.name), [side('low', 'Lowest', '--c2'), side('high', 'Highest', '--c1')], t.result,
      (item) => item.dataset.label + ' ' + readable(item.raw[1]) + ', swing ' + readable(inputs[item.dataIndex].swing));
    const chart = charts[charts.length - 1];
    const values = inputs.flatMap((i) => [i.low, i.high]).concat(t.base).filter((x) => x !== null);
    if (chart && chart.canvas.id === id && values.length) {
      const low = Math.min(...values), high = Math.max(...values), room = (high - low) * 0.05 || Math.abs(high) * 0.05 || 1;
      chart.options.scales.x.min = low - room;
      chart.options.scales.x.max = high + room;
      chart.update('none');
    }
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
    })), 'Position of the input', t.result, false);
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
        scales: { x: numeric(s.input), y: numeric(result) },
        plugins: { legend: { display: false }, tooltip: { callbacks: {
          label: (item) => readable(item.parsed.x) + ' → ' + readable(item.parsed.y) } } }
      }
    });
  }

  function drawAll() {
    charts.splice(0).forEach((chart) => chart.destroy());
    data.results.forEach((r, i) => {
      if (r.histogram) { histogram('histogram-' + i, r.histogram); }
      if (r.tornado) { tornado('tornado-' + i, r.tornado); spider('spider-' + i, r.tornado); }
      if (r.sensitivity) {
        const inputs = r.sensitivity.slice(0, 15);
        bars('sensitivity-' + i, inputs.map((s) => s.name), [{ label: 'Contribution, %',
          data: inputs.map((s) => s.contribution === null ? null : 100 * s.contribution),
          backgroundColor: inputs.map((s) => colour(s.contribution < 0 ? '--c2' : '--c1')) }],
          'Share of the explained variation, % (sign: direction)',
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
