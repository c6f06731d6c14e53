// What both pages do with the plug-in: open a session, start a transfer and follow it, tell errors
// from answers. Plain ECMAScript 5, as browsers with plug-ins speak it.
var page = (function () {
  "use strict";

  var plugin = document.getElementById("orvane");
  var appId = "";         // of the session, once there is one
  var transferId = "";    // the transfer that this page has started
  var latest = {};        // the newest activity of every transfer, by its id
  var lastLine = "";
  var buttons = [];       // what works while no transfer runs
  // A page from disk has no host; the plug-in takes it for one of this computer.
  var host = window.location.hostname || "localhost";

  function element(id) { return document.getElementById(id); }
  function show(id, text) { element(id).textContent = text; }
  function print(line) { if (window.console) window.console.log(line); }

  function append(list, text) {
    var item = document.createElement("li");
    item.textContent = text;
    element(list).appendChild(item);
  }

  // What the page is to do: the members of window.demo, else the parameters of the address, else
  // these.
  function readOrder(order) {
    var parts = window.location.search.substring(1).split("&");
    for (var i = 0; i < parts.length; ++i) {
      var pair = parts[i].split("=");
      if (pair.length === 2)
        order[decodeURIComponent(pair[0])] = decodeURIComponent(pair[1].replace(/\+/g, " "));
    }
    for (var name in window.demo || {}) order[name] = window.demo[name];
    return order;
  }

  function size(bytes) {
    var units = ["bytes", "KiB", "MiB", "GiB"], i = 0;
    while (bytes >= 1024 && i < units.length - 1) { bytes /= 1024; ++i; }
    return (i === 0 ? bytes : bytes.toFixed(1)) + " " + units[i];
  }

  // ---- Replies --------------------------------------------------------------------------------

  // An error comes back as text too; this is the form by which it is known.
  function isError(reply) { return reply.indexOf('{"error":') === 0; }

  function errorText(reply) {
    try {
      return JSON.parse(reply).error.user_message;
    } catch (e) {
      return reply;  // the words of an error are not escaped, so it may be no JSON
    }
  }

  function fail(text) {
    show("error", text);
    show("status", "Failed");
    element("card").className = "failed";
    enable(appId !== "");  // nothing works without a session
    print("error: " + text);
  }

  function enable(on) {
    for (var i = 0; i < buttons.length; ++i) buttons[i].disabled = !on;
  }

  // ---- Start of the page ----------------------------------------------------------------------

  // Opens the session, then lets these buttons work; false if there is none.
  function start(names) {
    for (var i = 0; i < names.length; ++i) buttons.push(element(names[i]));
    if (!plugin.queryPluginVersion) {
      show("versions", "Orvane Web is not installed in this browser.");
      fail("The plug-in is missing");
      return false;
    }
    if (!openSession() || !showVersions()) return false;
    enable(true);
    return true;
  }

  // An application id that begins with "^" is tied to the page's host.
  function openSession() {
    var reply = plugin.initSession("^" + host, host);
    print("session: " + reply);
    if (isError(reply)) {
      fail(errorText(reply));
      return false;
    }
    appId = JSON.parse(reply).app_id;
    show("session", appId);
    plugin.eventHandler = onEvent;
    return true;
  }

  function showVersions() {
    var version = plugin.queryPluginVersion();
    var reply = plugin.queryVantrelVersion();
    print("plug-in: " + version);
    print("client: " + reply);
    if (isError(reply)) {
      show("versions", "Orvane Web " + version);
      fail(errorText(reply));
      return false;
    }
    var client = JSON.parse(reply);
    show("versions", "Orvane Web " + version + "  ·  " + (client.product || "Orvane Vantrel") +
                     " " + client.version);
    return true;
  }

  // ---- The transfer ---------------------------------------------------------------------------

  function requestBody(transfer) {
    return JSON.stringify({
      orvane_vantrel_settings: { app_id: appId },
      transfer_specs: [{
        // An absolute folder would have to be one that the user has chosen in a dialog.
        orvane_vantrel_settings: { use_absolute_destination_path: false },
        transfer_spec: transfer
      }]
    });
  }

  // Asks the client for a transfer. The answer comes through the function; only a refused request
  // is answered at once, and this is then the result.
  function request(transfer, answer) {
    return plugin.vantrelHttpRequestAsync("POST", "/v5/vantrel/transfers/start",
                                          requestBody(transfer), answer);
  }

  function startTransfer(transfer) {
    element("card").className = "";
    enable(false);
    show("error", "");
    show("status", "Starting");
    transferId = "";
    var refusal = request(transfer, onStarted);
    if (refusal) fail(errorText(refusal));
  }

  function onStarted(reply) {
    if (isError(reply)) {
      fail(errorText(reply));
      return;
    }
    transferId = JSON.parse(reply).transfers[0].uuid;
    print("transfer started: " + transferId);
    showTransfer();  // its first activity may have come before this answer
  }

  // ---- Events ---------------------------------------------------------------------------------

  function onEvent(name, payload) {
    if (name !== "transfer") return;
    var transfers = JSON.parse(payload).transfers || [];
    for (var i = 0; i < transfers.length; ++i) latest[transfers[i].uuid] = transfers[i];
    showTransfer();
  }

  function showTransfer() {
    var transfer = latest[transferId];
    if (!transfer) return;
    var line = transfer.status + " " + transfer.percentage + "%";
    if (line === lastLine) return;
    lastLine = line;
    element("bar").style.width = transfer.percentage + "%";
    show("status", transfer.status_text);
    show("amount", transfer.percentage + " %  ·  " + size(transfer.bytes_written) + " of " +
                   size(transfer.bytes_expected));
    line += ", " + transfer.bytes_written + " of " + transfer.bytes_expected + " bytes";
    append("events", line);
    print("progress: " + line);
    if (transfer.status === "failed") fail(transfer.status_text);
    if (transfer.status === "completed") complete(transfer);
  }

  function complete(transfer) {
    element("card").className = "completed";
    enable(true);
    print("transfer completed: " + transfer.bytes_written + " bytes");
  }

  return {
    plugin: plugin, element: element, show: show, print: print, append: append, size: size,
    readOrder: readOrder, isError: isError, errorText: errorText, fail: fail, start: start,
    request: request, startTransfer: startTransfer
  };
}());
