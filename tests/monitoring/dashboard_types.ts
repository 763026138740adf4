// Grafana's own types, for a dashboard in JSON: there an enumeration is its text or its number.
import type { Dashboard, DataQuery } from '@grafana/schema';
import type { Options as StatOptions } from '@grafana/schema/dist/esm/raw/composable/stat/panelcfg/x/StatPanelCfg_types.gen.d.ts';
import type { Options as TableOptions } from '@grafana/schema/dist/esm/raw/composable/table/panelcfg/x/TablePanelCfg_types.gen.d.ts';
import type { FieldConfig, Options as TimeseriesOptions } from '@grafana/schema/dist/esm/raw/composable/timeseries/panelcfg/x/TimeSeriesPanelCfg_types.gen.d.ts';

type Json<T> = T extends string ? `${T}` : T extends number ? T | number : T extends object ? { [Key in keyof T]: Json<T[Key]> } : T;
type Options = { stat: Json<StatOptions>; table: Json<Partial<TableOptions>>; timeseries: Json<TimeseriesOptions> };
type Fields = { stat: undefined; table: undefined; timeseries: Json<FieldConfig> };
// Prometheus' own part of a query is not published.
type Targets = Array<DataQuery & { expr: string; legendFormat?: string; format?: 'table'; instant: boolean; range: boolean; editorMode: 'code' }>;
